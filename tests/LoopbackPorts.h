// Loopback TCP ports held for the life of their objects: one where connections are refused, one
// where they are accepted into the backlog and never answered, and the listening socket of a
// test server.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace vemba::tests {

// A socket bound to an ephemeral loopback port; `listening` decides whether connections queue
// (and wait forever) or are refused. Bound either way, so no other process can take the port.
class LoopbackPort {
 public:
  explicit LoopbackPort(bool listening) : fd_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (fd_ < 0 || bind(fd_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
        (listening && listen(fd_, 16) != 0)) {
      throw std::runtime_error("cannot reserve a loopback port");
    }
    port_ = ntohs(address.sin_port);
  }
  ~LoopbackPort() { close(fd_); }
  LoopbackPort(const LoopbackPort&) = delete;
  LoopbackPort& operator=(const LoopbackPort&) = delete;
  int port() const { return port_; }
  int fd() const { return fd_; }
  // `scheme`://127.0.0.1:port`path`
  std::string url(const std::string& scheme, const std::string& path) const {
    return scheme + "://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  int fd_;
  int port_ = 0;
};

// Connections are refused.
struct ClosedPort : LoopbackPort {
  ClosedPort() : LoopbackPort(false) {}
};
// Connections are accepted into the backlog and never answered.
struct SilentPort : LoopbackPort {
  SilentPort() : LoopbackPort(true) {}
};

}  // namespace vemba::tests
