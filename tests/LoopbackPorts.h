// A loopback TCP port where connections are refused, held for the life of its object.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace vemba::tests {

// A socket bound to an ephemeral loopback port and never listening: connecting is refused, and
// no other process can take the port meanwhile.
class ClosedPort {
 public:
  ClosedPort() : fd_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (fd_ < 0 || bind(fd_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
      throw std::runtime_error("cannot reserve a loopback port");
    }
    port_ = ntohs(address.sin_port);
  }
  ~ClosedPort() { close(fd_); }
  ClosedPort(const ClosedPort&) = delete;
  ClosedPort& operator=(const ClosedPort&) = delete;
  // `scheme`://127.0.0.1:port`path`
  std::string url(const std::string& scheme, const std::string& path) const {
    return scheme + "://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  int fd_;
  int port_ = 0;
};

}  // namespace vemba::tests
