#include "FakeMainQueue.h"

#include <gtest/gtest.h>

#include <string>

namespace vemba::fake {
namespace {

TEST(FakeMainQueueTest, RunsInDueOrderThenPostingOrder) {
  FakeMainQueue queue;
  std::string order;
  queue.postAfter(std::chrono::milliseconds(20), [&] { order += "c"; });
  queue.post([&] { order += "a"; });
  queue.postAfter(std::chrono::milliseconds(10), [&] { order += "b"; });
  queue.post([&] {
    order += "A";
    queue.post([&] { order += "N"; });  // posted while running: runs in the same drain
  });
  EXPECT_EQ(queue.runUntilIdle(), 3U);
  EXPECT_EQ(order, "aAN");
  EXPECT_EQ(queue.advance(std::chrono::milliseconds(15)), 1U);
  EXPECT_EQ(order, "aANb");
  EXPECT_EQ(queue.now(), std::chrono::milliseconds(15));
  queue.advance(std::chrono::milliseconds(5));
  EXPECT_EQ(order, "aANbc");
}

}  // namespace
}  // namespace vemba::fake
