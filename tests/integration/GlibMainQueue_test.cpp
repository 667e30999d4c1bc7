// The GLib main queue, run by iterating the default main context on the test's (main) thread.
#include "GlibMainQueue.h"

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

#include "FakeMainQueue.h"
#include "MainLoop.h"

namespace vemba::tests {
namespace {

using linux_platform::GlibMainQueue;
using Clock = std::chrono::steady_clock;

// A one-shot GLib timer that sets `*flag` after `milliseconds`; returns its source id.
guint setAfter(guint milliseconds, bool* flag) {
  return g_timeout_add(
      milliseconds,
      [](gpointer raised) -> gboolean {
        *static_cast<bool*>(raised) = true;
        return G_SOURCE_REMOVE;
      },
      flag);
}

// The posters start once the loop blocks: only their posts (or, failing that, the 5 s guard) can
// end its blocking iterations.
TEST(GlibMainQueueTest, PostsFromOtherThreadsWakeTheLoopAndRunOnTheMainThreadInPostersOrder) {
  GlibMainQueue queue;
  constexpr int kThreads = 4;
  constexpr int kPerThread = 250;
  std::vector<std::vector<int>> seen(kThreads);
  int total = 0;
  bool allOnMain = true;
  std::atomic<bool> offMainPostsSawMain{false};
  bool guardFired = false;
  const guint guard = setAfter(5000, &guardFired);
  std::vector<std::thread> posters;
  for (int t = 0; t < kThreads; ++t) {
    posters.emplace_back([&, t] {
      offMainPostsSawMain = offMainPostsSawMain || queue.isMainThread();
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      for (int i = 0; i < kPerThread; ++i) {
        queue.post([&, t, i] {
          seen[static_cast<std::size_t>(t)].push_back(i);
          allOnMain = allOnMain && queue.isMainThread();
          ++total;
        });
      }
    });
  }
  while (total < kThreads * kPerThread && !guardFired) {
    g_main_context_iteration(nullptr, TRUE);
  }
  for (std::thread& poster : posters) {
    poster.join();
  }
  if (!guardFired) {
    g_source_remove(guard);
  }
  EXPECT_FALSE(guardFired);  // the posts woke the loop, not the guard
  EXPECT_FALSE(offMainPostsSawMain);
  EXPECT_TRUE(allOnMain);
  for (int t = 0; t < kThreads; ++t) {
    const std::vector<int>& ofThread = seen[static_cast<std::size_t>(t)];
    ASSERT_EQ(ofThread.size(), static_cast<std::size_t>(kPerThread));
    EXPECT_TRUE(std::is_sorted(ofThread.begin(), ofThread.end())) << "thread " << t;
  }
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
    EXPECT_GE(r.after, std::chrono::milliseconds(std::atoi(r.label.c_str()))) << r.label;
  }
  EXPECT_THAT(labels, ::testing::ElementsAre("negative", "now", "20a", "20b", "40", "60"));
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
  runMainLoopFor(std::chrono::milliseconds(50));
  EXPECT_FALSE(ran);
}

TEST(GlibMainQueueTest, OtherSourcesRunBetweenBurstsOfPostedWork) {
  GlibMainQueue queue;
  // Work that always posts more keeps the queue busy for good; a same-priority idle source and
  // a timer must still get their turns between the bursts.
  int bursts = 0;
  std::function<void()> keepBusy = [&] {
    ++bursts;
    queue.post(keepBusy);
  };
  queue.post(keepBusy);
  int idleRuns = 0;
  const guint idle = g_idle_add_full(
      G_PRIORITY_DEFAULT,
      [](gpointer count) -> gboolean {
        ++*static_cast<int*>(count);
        return G_SOURCE_CONTINUE;
      },
      &idleRuns, nullptr);
  bool timerFired = false;
  setAfter(20, &timerFired);
  const bool served =
      runMainLoopUntil([&] { return timerFired && idleRuns >= 10; }, std::chrono::seconds(5));
  g_source_remove(idle);
  EXPECT_TRUE(served) << "idle runs: " << idleRuns << ", bursts: " << bursts;
  // Each burst is one dispatch of one item: the queue never ran its own posts in a row.
  EXPECT_GE(idleRuns, 10);
  EXPECT_GE(bursts, idleRuns - 1);
}

// Work posted while work runs waits for the next dispatch. One scenario, played on the real queue
// (one loop iteration at a time) and on the fake one (one dispatch at a time): the work of each
// dispatch must be the same on both.
TEST(GlibMainQueueTest, TheFakeQueueDispatchesAsTheRealOneDoes) {
  using Trace = std::vector<std::vector<std::string>>;
  const auto play = [](platform::MainQueue& queue, Trace& trace) {
    const auto record = [&trace](std::string label) {
      return [&trace, label] { trace.back().push_back(label); };
    };
    queue.post([&queue, &trace, record] {
      trace.back().push_back("a");
      queue.post(record("a.1"));
      queue.post([&queue, &trace, record] {
        trace.back().push_back("a.2");
        queue.post(record("a.2.1"));
      });
    });
    queue.post(record("b"));
    queue.post([&queue, record] { queue.post(record("c.1")); });
  };

  Trace real;
  {
    GlibMainQueue queue;
    play(queue, real);
    while (queue.pendingCount() > 0) {
      real.emplace_back();
      g_main_context_iteration(nullptr, TRUE);
      if (real.back().empty()) {
        real.pop_back();  // an iteration that served another source only
      }
    }
  }
  Trace fake;
  {
    fake::FakeMainQueue queue;
    play(queue, fake);
    for (fake.emplace_back(); queue.dispatchOnce() > 0; fake.emplace_back()) {
    }
    fake.pop_back();
  }
  const Trace expected = {{"a", "b"}, {"a.1", "a.2", "c.1"}, {"a.2.1"}};
  EXPECT_EQ(real, expected);
  EXPECT_EQ(fake, expected);
}

}  // namespace
}  // namespace vemba::tests
