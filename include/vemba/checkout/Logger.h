// The host-replaceable sink of the checkout kit's host-facing log lines (the configuration's
// `logger`). The kit writes its own diagnostics to the shared OSLogger instead; the only line
// written here is the checkout load time.
#pragma once

#include <string>

namespace vemba::checkout {

// Contract: called on the main thread; implementations must not throw.
class Logger {
 public:
  virtual ~Logger() = default;
  virtual void log(const std::string& message) = 0;
  virtual void clearLogs() = 0;
};

// The default logger: both operations do nothing.
class NoOpLogger final : public Logger {
 public:
  void log(const std::string& /*message*/) override {}
  void clearLogs() override {}
};

}  // namespace vemba::checkout
