#include "FakeMainQueue.h"

#include <algorithm>
#include <utility>

namespace vemba::fake {

void FakeMainQueue::post(std::function<void()> work) {
  postAfter({}, std::exchange(work, nullptr));
}

void FakeMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
  if (delay.count() < 0) {
    delay = {};
  }
  queue_.emplace(Key{now_ + delay, sequence_++}, std::exchange(work, nullptr));
}

std::chrono::system_clock::time_point FakeMainQueue::wallNow() const {
  // A fixed epoch keeps wall-clock values reproducible: 2026-01-01T00:00:00Z.
  return std::chrono::system_clock::time_point(std::chrono::seconds(1767225600)) + now_;
}

std::chrono::steady_clock::time_point FakeMainQueue::monotonicNow() const {
  return std::chrono::steady_clock::time_point(now_);
}

std::size_t FakeMainQueue::dispatchOnce() {
  const std::uint64_t postedBefore = sequence_;
  std::size_t ran = 0;
  // Work posted during this dispatch sorts after everything that was due when it began (its due
  // time is at least now_), so stopping at the first such item keeps the order.
  for (auto head = queue_.begin(); head != queue_.end(); head = queue_.begin()) {
    if (head->first.first > now_ || head->first.second >= postedBefore) {
      break;
    }
    std::function<void()> work = std::move(head->second);
    queue_.erase(head);
    work();
    ++ran;
  }
  return ran;
}

std::size_t FakeMainQueue::runUntilIdle() {
  return advance({});
}

std::size_t FakeMainQueue::advance(std::chrono::milliseconds delta) {
  const std::chrono::milliseconds target = now_ + std::max(delta, std::chrono::milliseconds{});
  std::size_t ran = 0;
  while (!queue_.empty() && queue_.begin()->first.first <= target) {
    now_ = std::max(now_, queue_.begin()->first.first);
    ran += dispatchOnce();
  }
  now_ = target;
  return ran;
}

}  // namespace vemba::fake
