// A main queue run by hand, with virtual time. Single-threaded: tests post and run on one
// thread. Work posted while running is run in the same drain if it is due.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

#include "platform/Clock.h"
#include "platform/MainQueue.h"

namespace vemba::fake {

class FakeMainQueue final : public platform::MainQueue, public platform::Clock {
 public:
  void post(std::function<void()> work) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
  bool isMainThread() const override { return true; }

  std::chrono::system_clock::time_point wallNow() const override;
  std::chrono::steady_clock::time_point monotonicNow() const override;

  // Runs everything due now, including work that becomes due while running. Returns the count.
  std::size_t runUntilIdle();
  // Moves virtual time forward by `delta`, running what falls due on the way, in time order.
  std::size_t advance(std::chrono::milliseconds delta);
  std::size_t pendingCount() const { return queue_.size(); }
  std::chrono::milliseconds now() const { return now_; }

 private:
  using Key = std::pair<std::chrono::milliseconds, std::uint64_t>;  // due time, sequence
  std::map<Key, std::function<void()>> queue_;
  std::chrono::milliseconds now_{0};
  std::uint64_t sequence_ = 0;
};

}  // namespace vemba::fake
