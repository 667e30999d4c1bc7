// Wall and monotonic time.
#pragma once

#include <chrono>

namespace vemba::platform {

// Contract: thread-safe; monotonicNow() never goes backwards.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual std::chrono::system_clock::time_point wallNow() const = 0;
  virtual std::chrono::steady_clock::time_point monotonicNow() const = 0;
};

}  // namespace vemba::platform
