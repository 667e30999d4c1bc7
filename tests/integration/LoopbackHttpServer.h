// A plain-HTTP server on 127.0.0.1 (an ephemeral port) for tests that need answers the local
// exchange does not give: redirects, delays, echoes. One thread serves one connection at a time,
// answers every request with "Connection: close" and records what arrived. It stops with the
// object (the destructor joins the thread); routes run on the server thread.
#pragma once

#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "LoopbackPorts.h"

namespace vemba::testing {

class LoopbackHttpServer {
 public:
  struct Request {
    std::string method;
    std::string path;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    std::optional<std::string> header(const std::string& name) const {
      for (const auto& [key, value] : headers) {
        if (strcasecmp(key.c_str(), name.c_str()) == 0) {
          return value;
        }
      }
      return std::nullopt;
    }
  };
  struct Response {
    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    std::chrono::milliseconds delay{0};
  };
  using Route = std::function<Response(const Request&)>;

  explicit LoopbackHttpServer(Route route)
      : route_(std::move(route)), thread_([this] { serve(); }) {}
  ~LoopbackHttpServer() {
    stopping_ = true;
    thread_.join();
  }
  LoopbackHttpServer(const LoopbackHttpServer&) = delete;
  LoopbackHttpServer& operator=(const LoopbackHttpServer&) = delete;

  std::string origin() const { return "http://127.0.0.1:" + std::to_string(listener_.port()); }
  std::vector<Request> received() const {
    const std::lock_guard lock(mutex_);
    return received_;
  }

 private:
  void serve() {
    while (!stopping_) {
      pollfd ready{listener_.fd(), POLLIN, 0};
      if (poll(&ready, 1, 50) <= 0) {
        continue;
      }
      const int connection = accept(listener_.fd(), nullptr, nullptr);
      if (connection >= 0) {
        answer(connection);
        close(connection);
      }
    }
  }

  // Reads until `done` holds on what arrived, the peer closes, or a second passes in silence.
  static bool readUntil(int connection, std::string& in,
                        const std::function<bool(const std::string&)>& done) {
    char buffer[4096];
    while (!done(in)) {
      pollfd ready{connection, POLLIN, 0};
      if (poll(&ready, 1, 1000) <= 0) {
        return false;
      }
      const ssize_t got = recv(connection, buffer, sizeof buffer, 0);
      if (got <= 0) {
        return false;
      }
      in.append(buffer, static_cast<std::size_t>(got));
    }
    return true;
  }

  void answer(int connection) {
    std::string in;
    if (!readUntil(connection, in,
                   [](const std::string& s) { return s.find("\r\n\r\n") != std::string::npos; })) {
      return;
    }
    const std::size_t headEnd = in.find("\r\n\r\n");
    Request request;
    std::istringstream head(in.substr(0, headEnd + 2));  // each line ends in "\r\n"
    std::string line;
    std::getline(head, line);
    std::istringstream(line) >> request.method >> request.path;
    while (std::getline(head, line)) {
      const std::size_t colon = line.find(':');
      std::string value = line.substr(colon + 1, line.size() - colon - 2);  // up to the '\r'
      value.erase(0, value.find_first_not_of(' '));
      request.headers.emplace_back(line.substr(0, colon), value);
    }
    const std::size_t length = std::stoul(request.header("Content-Length").value_or("0"));
    readUntil(connection, in,
              [&](const std::string& s) { return s.size() >= headEnd + 4 + length; });
    request.body = in.substr(headEnd + 4, length);
    {
      const std::lock_guard lock(mutex_);
      received_.push_back(request);
    }
    const Response response = route_(request);
    std::this_thread::sleep_for(response.delay);
    std::string out = "HTTP/1.1 " + std::to_string(response.status) + " Scripted\r\n";
    for (const auto& [name, value] : response.headers) {
      out += name + ": " + value + "\r\n";
    }
    out +=
        "Content-Length: " + std::to_string(response.body.size()) + "\r\nConnection: close\r\n\r\n";
    if (request.method != "HEAD") {
      out += response.body;
    }
    send(connection, out.data(), out.size(), MSG_NOSIGNAL);
  }

  Route route_;
  LoopbackPort listener_{/*listening=*/true};
  std::atomic<bool> stopping_{false};
  std::thread thread_;
  mutable std::mutex mutex_;
  std::vector<Request> received_;
};

}  // namespace vemba::testing
