// The main queue of the Linux backend, run by the GLib main loop of the default GMainContext.
//
// Contract (on top of platform::MainQueue):
// - post()/postAfter() may be called from any thread; they add the work to one mutex-protected
//   queue ordered by (due time, posting sequence) and wake the default context. Due times are
//   read on the monotonic clock inside the lock, so work posted earlier never runs later than
//   work posted after it with the same or a longer delay. A negative delay counts as zero.
// - One GSource (priority G_PRIORITY_DEFAULT) attached to the default context runs the queue
//   from whichever thread iterates that context; the host must iterate it on the main thread
//   (gtk_main, g_application_run, g_main_loop_run or g_main_context_iteration all do).
// - A dispatch runs the work that was due and already queued when it began, in order, then
//   returns to the loop, so other sources are served between bursts; work posted while running
//   waits for the next dispatch (it never runs on its poster's stack).
// - The work must not throw. The queue keeps each work item (and its captures) alive until it
//   has run; the item is destroyed on the main thread right after.
// - isMainThread() is true on the process's initial thread, the thread GTK and the host's main
//   loop run on.
// - Owner and lifetime: the backend holds one for the whole process. Destroy an instance only
//   on the main thread and not from within its own work; pending work is dropped unrun.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "common/ThreadSafety.h"
#include "platform/MainQueue.h"

namespace vemba::linux_platform {

class GlibMainQueue final : public platform::MainQueue {
 public:
  GlibMainQueue();
  ~GlibMainQueue() override;
  GlibMainQueue(const GlibMainQueue&) = delete;
  GlibMainQueue& operator=(const GlibMainQueue&) = delete;

  void post(std::function<void()> work) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
  bool isMainThread() const override;

  // Work waiting to run (any thread).
  std::size_t pendingCount() const;

 private:
  struct Source;
  using Clock = std::chrono::steady_clock;
  using Key = std::pair<Clock::time_point, std::uint64_t>;  // due time, posting sequence

  // For the GSource: the time until the head is due (zero when it is, absent when empty).
  std::optional<Clock::duration> timeUntilNextDue() const VEMBA_EXCLUDES(mutex_);
  void runDue() VEMBA_EXCLUDES(mutex_);

  mutable Mutex mutex_;
  std::map<Key, std::function<void()>> queue_ VEMBA_GUARDED_BY(mutex_);
  std::uint64_t nextSequence_ VEMBA_GUARDED_BY(mutex_) = 0;
  Source* source_ = nullptr;
};

}  // namespace vemba::linux_platform
