#include "FakeMainQueue.h"

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
  while (!queue_.empty() && queue_.begin()->first.first <= target) {
    auto node = queue_.extract(queue_.begin());
    if (node.key().first > now_) {
      now_ = node.key().first;
    }
    node.mapped()();
    ++ran;
  }
  now_ = target;
  return ran;
}

}  // namespace vemba::fake
