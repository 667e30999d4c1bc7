#include "FakeMainQueue.h"

#include <algorithm>

namespace vemba::fake {

void FakeMainQueue::post(std::function<void()> work) {
  postAfter({}, std::move(work));
}

void FakeMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
  if (delay.count() < 0) {
    delay = {};
  }
  queue_.emplace(Key{now_ + delay, sequence_++}, std::move(work));
}

std::chrono::system_clock::time_point FakeMainQueue::wallNow() const {
  // A fixed epoch keeps wall-clock values reproducible: 2026-01-01T00:00:00Z.
  return std::chrono::system_clock::time_point(std::chrono::seconds(1767225600)) + now_;
}

std::chrono::steady_clock::time_point FakeMainQueue::monotonicNow() const {
  return std::chrono::steady_clock::time_point(now_);
}

std::size_t FakeMainQueue::runUntilIdle() {
  return advance({});
}

std::size_t FakeMainQueue::advance(std::chrono::milliseconds delta) {
  const std::chrono::milliseconds target = now_ + delta;
  std::size_t ran = 0;
  for (auto head = queue_.begin(); head != queue_.end(); head = queue_.begin()) {
    const std::chrono::milliseconds due = head->first.first;
    if (due > target) {
      break;
    }
    now_ = std::max(now_, due);
    std::function<void()> work = std::move(head->second);
    queue_.erase(head);
    work();
    ++ran;
  }
  now_ = target;
  return ran;
}

}  // namespace vemba::fake
