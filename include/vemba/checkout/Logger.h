// The host-replaceable sink of the checkout kit's host-facing log lines (the configuration's
// `logger`). The kit writes its own diagnostics to the shared OSLogger instead; the only line
// written here is the checkout load time.
#pragma once

#include <string>

#include "vemba/Export.h"

namespace vemba::checkout {

// Contract: called on the main thread; implementations must not throw.
class VEMBA_EXPORT Logger {
 public:
  virtual ~Logger() = default;
  virtual void log(const std::string& message) = 0;
  virtual void clearLogs() = 0;
};

// The default logger: both operations do nothing.
class VEMBA_EXPORT NoOpLogger final : public Logger {
 public:
  void log(const std::string& /*message*/) override {}
  void clearLogs() override {}
};

}  // namespace vemba::checkout
