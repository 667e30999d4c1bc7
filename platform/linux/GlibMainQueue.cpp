#include "GlibMainQueue.h"

#include <glib.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <utility>

namespace vemba::linux_platform {

struct GlibMainQueue::Source {
  GSource base;  // first: GLib allocates and frees the whole struct as a GSource
  GlibMainQueue* queue;

  static gboolean prepare(GSource* source, gint* timeout) noexcept {
    const std::optional<Clock::duration> wait = owner(source)->timeUntilNextDue();
    if (!wait) {
      *timeout = -1;
      return FALSE;
    }
    if (*wait <= Clock::duration::zero()) {
      *timeout = 0;
      return TRUE;
    }
    // Rounded up: waking a little late is harmless, waking early only costs another round.
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(*wait).count();
    *timeout = static_cast<gint>(std::min<decltype(milliseconds)>(milliseconds, INT_MAX));
    return FALSE;
  }

  static gboolean check(GSource* source) noexcept {
    const std::optional<Clock::duration> wait = owner(source)->timeUntilNextDue();
    return wait && *wait <= Clock::duration::zero() ? TRUE : FALSE;
  }

  static gboolean dispatch(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) noexcept {
    owner(source)->runDue();
    return G_SOURCE_CONTINUE;
  }

  static GlibMainQueue* owner(GSource* source) { return reinterpret_cast<Source*>(source)->queue; }

  static GSourceFuncs functions;
};

GSourceFuncs GlibMainQueue::Source::functions = {
    &Source::prepare, &Source::check, &Source::dispatch, nullptr, nullptr, nullptr};

GlibMainQueue::GlibMainQueue() {
  GSource* source = g_source_new(&Source::functions, sizeof(Source));
  source_ = reinterpret_cast<Source*>(source);
  source_->queue = this;
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_name(source, "vemba main queue");
  g_source_attach(source, g_main_context_default());
}

GlibMainQueue::~GlibMainQueue() {
  GSource* source = &source_->base;
  g_source_destroy(source);
  g_source_unref(source);
}

void GlibMainQueue::post(std::function<void()> work) {
  postAfter(std::chrono::milliseconds::zero(), std::exchange(work, nullptr));
}

void GlibMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
  delay = std::max(delay, std::chrono::milliseconds::zero());
  {
    const MutexLock lock(mutex_);
    queue_.emplace(Key{Clock::now() + delay, nextSequence_++}, std::exchange(work, nullptr));
  }
  // Once the lock is released the work may already have run on the main thread; only the
  // default context, which lives for the process, is touched from here on.
  g_main_context_wakeup(g_main_context_default());
}

bool GlibMainQueue::isMainThread() const {
  return gettid() == getpid();
}

std::size_t GlibMainQueue::pendingCount() const {
  const MutexLock lock(mutex_);
  return queue_.size();
}

std::optional<GlibMainQueue::Clock::duration> GlibMainQueue::timeUntilNextDue() const {
  const MutexLock lock(mutex_);
  if (queue_.empty()) {
    return std::nullopt;
  }
  return queue_.begin()->first.first - Clock::now();
}

void GlibMainQueue::runDue() {
  Clock::time_point now;
  std::uint64_t postedBefore = 0;
  {
    const MutexLock lock(mutex_);
    now = Clock::now();
    postedBefore = nextSequence_;
  }
  for (;;) {
    std::function<void()> work;
    {
      const MutexLock lock(mutex_);
      // Work posted during this dispatch sorts after everything that was due when it began
      // (its due time is at least `now`), so stopping at the first such item keeps the order.
      const auto head = queue_.begin();
      if (head == queue_.end() || head->first.first > now || head->first.second >= postedBefore) {
        return;
      }
      work = std::move(head->second);
      queue_.erase(head);
    }
    work();
  }
}

}  // namespace vemba::linux_platform
