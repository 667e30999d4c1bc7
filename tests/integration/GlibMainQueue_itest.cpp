// The GLib main queue, run by iterating the default main context on the test's (main) thread.
#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CurlHttpClient.h"
#include "GlibMainQueue.h"
#include "HttpTestSupport.h"
#include "LocalExchange.h"

namespace vemba::testing {
namespace {

using linux_platform::GlibMainQueue;
using Clock = std::chrono::steady_clock;

// Iterates the default main context until `done()` holds or `limit` passes.
bool runMainLoopUntil(const std::function<bool()>& done,
                      std::chrono::milliseconds limit = std::chrono::seconds(20)) {
  // A heartbeat so that a blocking iteration comes back to check the deadline.
  const guint heartbeat = g_timeout_add(
      10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  const auto deadline = Clock::now() + limit;
  bool result = done();
  while (!result && Clock::now() < deadline) {
    g_main_context_iteration(nullptr, TRUE);
    result = done();
  }
  g_source_remove(heartbeat);
  return result;
}

TEST(GlibMainQueueTest, RunsPostedWorkInPostingOrderOnTheMainThread) {
  GlibMainQueue queue;
  std::vector<int> order;
  bool allOnMain = true;
  for (int i = 0; i < 100; ++i) {
    queue.post([&, i] {
      order.push_back(i);
      allOnMain = allOnMain && queue.isMainThread();
    });
  }
  ASSERT_TRUE(runMainLoopUntil([&] { return order.size() == 100; }));
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
  }
  EXPECT_TRUE(allOnMain);
}

TEST(GlibMainQueueTest, KeepsEachPostersOrderAcrossThreads) {
  GlibMainQueue queue;
  constexpr int kThreads = 4;
  constexpr int kPerThread = 250;
  std::vector<std::vector<int>> seen(kThreads);
  int total = 0;
  std::atomic<bool> offMainPostsSawMain{false};
  std::vector<std::thread> posters;
  for (int t = 0; t < kThreads; ++t) {
    posters.emplace_back([&, t] {
      if (queue.isMainThread()) {
        offMainPostsSawMain = true;
      }
      for (int i = 0; i < kPerThread; ++i) {
        queue.post([&, t, i] {
          seen[static_cast<std::size_t>(t)].push_back(i);
          ++total;
        });
      }
    });
  }
  ASSERT_TRUE(runMainLoopUntil([&] { return total == kThreads * kPerThread; }));
  for (std::thread& poster : posters) {
    poster.join();
  }
  EXPECT_FALSE(offMainPostsSawMain);
  for (int t = 0; t < kThreads; ++t) {
    const std::vector<int>& ofThread = seen[static_cast<std::size_t>(t)];
    ASSERT_EQ(ofThread.size(), static_cast<std::size_t>(kPerThread));
    EXPECT_TRUE(std::is_sorted(ofThread.begin(), ofThread.end())) << "thread " << t;
  }
}

TEST(GlibMainQueueTest, APostFromAnotherThreadWakesTheBlockedLoop) {
  GlibMainQueue queue;
  bool ran = false;
  bool guardFired = false;
  // Only this guard could otherwise end the blocking iteration.
  const guint guard = g_timeout_add(
      5000,
      [](gpointer flag) -> gboolean {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
      },
      &guardFired);
  std::thread poster([&queue, &ran] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    queue.post([&ran] { ran = true; });
  });
  const auto start = Clock::now();
  while (!ran && !guardFired) {
    g_main_context_iteration(nullptr, TRUE);
  }
  const auto took = Clock::now() - start;
  poster.join();
  if (!guardFired) {
    g_source_remove(guard);
  }
  EXPECT_TRUE(ran);
  EXPECT_LT(took, std::chrono::seconds(2));
}

TEST(GlibMainQueueTest, DelayedWorkRunsByDueTimeThenPostingOrderAndNeverEarly) {
  GlibMainQueue queue;
  struct Ran {
    std::string label;
    Clock::duration after;
  };
  std::vector<Ran> ran;
  const auto start = Clock::now();
  const auto record = [&](std::string label) {
    return [&ran, start, label] { ran.push_back({label, Clock::now() - start}); };
  };
  queue.postAfter(std::chrono::milliseconds(60), record("60"));
  queue.postAfter(std::chrono::milliseconds(20), record("20a"));
  queue.postAfter(std::chrono::milliseconds(40), record("40"));
  queue.postAfter(std::chrono::milliseconds(-5), record("negative"));
  queue.post(record("now"));
  queue.postAfter(std::chrono::milliseconds(20), record("20b"));

  ASSERT_TRUE(runMainLoopUntil([&] { return ran.size() == 6; }));
  std::vector<std::string> labels;
  for (const Ran& r : ran) {
    labels.push_back(r.label);
  }
  EXPECT_THAT(labels, ::testing::ElementsAre("negative", "now", "20a", "20b", "40", "60"));
  for (const Ran& r : ran) {
    const int delay = std::atoi(r.label.c_str());
    EXPECT_GE(r.after, std::chrono::milliseconds(delay)) << r.label;
  }
}

TEST(GlibMainQueueTest, WorkPostedWhileRunningWaitsForTheNextDispatch) {
  GlibMainQueue queue;
  std::vector<std::string> events;
  queue.post([&] {
    events.push_back("outer start");
    queue.post([&] { events.push_back("inner"); });
    events.push_back("outer end");
  });
  // Let each dispatch happen alone: the outer work runs in one iteration, the inner in a later one.
  ASSERT_TRUE(runMainLoopUntil([&] { return !events.empty(); }));
  EXPECT_THAT(events, ::testing::ElementsAre("outer start", "outer end"));
  EXPECT_EQ(queue.pendingCount(), 1u);
  ASSERT_TRUE(runMainLoopUntil([&] { return events.size() == 3; }));
  EXPECT_EQ(events.back(), "inner");
}

TEST(GlibMainQueueTest, DestroyingTheQueueDropsPendingWorkAndReleasesIt) {
  auto captured = std::make_shared<int>(0);
  std::weak_ptr<int> watch = captured;
  bool ran = false;
  {
    GlibMainQueue queue;
    queue.postAfter(std::chrono::hours(1), [&ran, captured] { ran = true; });
    queue.post([&ran, captured] { ran = true; });
    captured.reset();
    EXPECT_FALSE(watch.expired());
  }
  EXPECT_TRUE(watch.expired());
  // Nothing of the destroyed queue may run afterwards.
  bool ticked = false;
  g_timeout_add(
      20,
      [](gpointer flag) -> gboolean {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
      },
      &ticked);
  ASSERT_TRUE(runMainLoopUntil([&] { return ticked; }));
  EXPECT_FALSE(ran);
}

TEST(GlibMainQueueTest, IsMainThreadOnlyOnTheInitialThread) {
  GlibMainQueue queue;
  EXPECT_TRUE(queue.isMainThread());
  bool onOtherThread = true;
  std::thread([&] { onOtherThread = queue.isMainThread(); }).join();
  EXPECT_FALSE(onOtherThread);
}

TEST(GlibMainQueueTest, HttpCompletionsHopToTheMainThreadThroughTheQueue) {
  LocalExchange exchange;
  GlibMainQueue queue;  // outlives the client, whose completions post to it
  linux_platform::CurlHttpClient::Options options;
  options.caFile = exchange.caFile();
  linux_platform::CurlHttpClient client(options);

  std::atomic<bool> completionOnMain{true};
  bool delivered = false;
  bool deliveredOnMain = false;
  client.dataTask(bidRequest(exchange.origin(), "hop", "unit-hop"),
                  [&](platform::HttpResult result) {
                    completionOnMain = queue.isMainThread();
                    const bool ok = std::holds_alternative<platform::HttpResponse>(result);
                    queue.post([&, ok] {
                      delivered = ok;
                      deliveredOnMain = queue.isMainThread();
                    });
                  });
  ASSERT_TRUE(runMainLoopUntil([&] { return delivered; }));
  EXPECT_FALSE(completionOnMain);
  EXPECT_TRUE(deliveredOnMain);
}

}  // namespace
}  // namespace vemba::testing
