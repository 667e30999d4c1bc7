// A main queue run by hand, with virtual time. Single-threaded: tests post and run on one
// thread, the thread that made the queue, which plays the main thread (isMainThread() is true
// there only, so main-thread-only code called from another thread trips its check).
//
// It orders work exactly as the GLib main queue of the Linux backend does: one dispatch runs the
// work that was due and already queued when the dispatch began, in (due time, posting) order;
// work posted while a dispatch runs waits for the next dispatch, never running on its poster's
// stack. dispatchOnce() is one such dispatch, the place where a real loop would serve its other
// sources before the next one; runUntilIdle() and advance() repeat dispatches, so tests that only
// want everything run need not count them.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <thread>
#include <utility>

#include "platform/Clock.h"
#include "platform/MainQueue.h"

namespace vemba::fake {

class FakeMainQueue final : public platform::MainQueue, public platform::Clock {
 public:
  void post(std::function<void()> work) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
  bool isMainThread() const override { return std::this_thread::get_id() == owner_; }

  std::chrono::system_clock::time_point wallNow() const override;
  std::chrono::steady_clock::time_point monotonicNow() const override;

  // One dispatch at the current virtual time. Returns the count of work items run.
  std::size_t dispatchOnce();
  // Dispatches until nothing is due at the current virtual time. Returns the count run.
  std::size_t runUntilIdle();
  // Moves virtual time forward by `delta`: time stops at each due time on the way, where
  // dispatches run until nothing more is due then. Returns the count run.
  std::size_t advance(std::chrono::milliseconds delta);
  std::size_t pendingCount() const { return queue_.size(); }
  std::chrono::milliseconds now() const { return now_; }

 private:
  using Key = std::pair<std::chrono::milliseconds, std::uint64_t>;  // due time, sequence
  std::map<Key, std::function<void()>> queue_;
  std::chrono::milliseconds now_{0};
  std::uint64_t sequence_ = 0;
  const std::thread::id owner_ = std::this_thread::get_id();
};

}  // namespace vemba::fake
