// A local ad exchange (tools/exchange/exchange.py) running as a child process of a test, the demo
// or a benchmark.
//
// The constructor starts the exchange on 127.0.0.1 with a fresh state directory (its CA, keys
// and request log) and returns once it listens; it throws std::runtime_error when the exchange
// cannot start (for example when a fixed port is taken). The destructor stops the child by its
// PID (SIGTERM, then SIGKILL after a grace period), reaps it and removes the state directory
// (kept when VEMBA_KEEP_EXCHANGE_STATE is set). The exchange also exits by itself after its
// lifetime, after its idle time-out and as soon as this process is gone.
//
// Owner: whoever creates it (a test or test suite, the demo, a benchmark). All methods may be
// called from any thread.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vemba::exchange {

class LocalExchange {
 public:
  struct Options {
    // 0: any free port. 18443 is the exchange origin the library is built against by default;
    // tests that use it must hold the ctest resource lock "exchange_port_18443".
    int port = 0;
    std::chrono::seconds lifetime{600};
    std::chrono::seconds idleTimeout{300};
    std::chrono::seconds startTimeout{30};
  };

  LocalExchange();
  explicit LocalExchange(Options options);
  ~LocalExchange();
  LocalExchange(const LocalExchange&) = delete;
  LocalExchange& operator=(const LocalExchange&) = delete;

  int port() const { return port_; }
  // "https://127.0.0.1:<port>"
  std::string origin() const;
  // The CA certificate to trust (for example through SSL_CERT_FILE).
  const std::string& caFile() const { return caFile_; }

  // The entries recorded so far, oldest first, of one kind: "bid", "billing", "page", "control" or
  // "other".
  std::vector<nlohmann::json> log(std::string_view kind) const;
  // Waits until at least `count` entries of `kind` are recorded, or `timeout` passes; returns
  // the entries of that kind either way.
  std::vector<nlohmann::json> waitForLog(std::string_view kind, std::size_t count,
                                         std::chrono::milliseconds timeout) const;

  // Makes the exchange answer bids for `adUnit` with `behaviour` (see tools/exchange/README.md);
  // `parameters` are the behaviour's options, e.g. {"seconds": 2} for "slow". Throws on refusal.
  void setBehaviour(const std::string& adUnit, const std::string& behaviour,
                    const nlohmann::json& parameters = nlohmann::json::object());
  void clearLog();

  // The value of header `name` in a recorded entry (case-insensitive), absent when not sent.
  static std::optional<std::string> header(const nlohmann::json& entry, std::string_view name);

 private:
  nlohmann::json control(const nlohmann::json& command);
  void stop();

  std::string stateDir_;
  std::string caFile_;
  pid_t pid_ = -1;
  int port_ = 0;
};

}  // namespace vemba::exchange
