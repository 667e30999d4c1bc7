// The main queue: the one thread that runs UI work, web-view callbacks and host callbacks.
#pragma once

#include <chrono>
#include <functional>

namespace vemba::platform {

// Contract: post() and postAfter() may be called from any thread; the work runs later on the
// main thread, in posting order for equal due times, never on the caller's stack. The queue
// takes the work over whole and keeps it (and everything it captures) alive until it has run, so
// what it captures is released on the main thread: implementations hand the std::function on
// with std::exchange(work, nullptr), never leaving a moved-from one to the caller's thread.
class MainQueue {
 public:
  virtual ~MainQueue() = default;
  virtual void post(std::function<void()> work) = 0;
  virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> work) = 0;
  // True when called on the main thread.
  virtual bool isMainThread() const = 0;
};

}  // namespace vemba::platform
