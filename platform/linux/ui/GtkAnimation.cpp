#include "GtkAnimation.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace vemba::linux_platform {

namespace {

constexpr const char* kOpacityKey = "opacity";
// How long after its end time a tween that saw no frame (its widget is not on screen) is ended
// by the main-loop timer instead.
constexpr std::chrono::milliseconds kFrameClockGrace{100};

struct Tween : std::enable_shared_from_this<Tween> {
  GWeakRef widget{};
  std::string qdataKey;
  gint64 startMicroseconds = 0;
  double seconds = 0.0;
  std::function<void(double)> step;
  std::function<void(bool)> done;
  guint tickId = 0;
  guint timeoutId = 0;
  bool ended = false;

  Tween() = default;
  Tween(const Tween&) = delete;
  Tween& operator=(const Tween&) = delete;
  ~Tween() { g_weak_ref_clear(&widget); }

  double progressAt(gint64 now) const {
    if (seconds <= 0.0) {
      return 1.0;
    }
    return std::clamp(static_cast<double>(now - startMicroseconds) / (seconds * 1e6), 0.0, 1.0);
  }

  void end(bool finished) {
    if (ended) {
      return;
    }
    ended = true;
    const auto self = shared_from_this();  // the sources below may hold the last references
    auto* live = static_cast<GtkWidget*>(g_weak_ref_get(&widget));
    if (timeoutId != 0) {
      g_source_remove(std::exchange(timeoutId, 0U));
    }
    if (live != nullptr) {
      if (tickId != 0) {
        gtk_widget_remove_tick_callback(live, std::exchange(tickId, 0U));
      }
      auto* current =
          static_cast<std::weak_ptr<Tween>*>(g_object_get_data(G_OBJECT(live), qdataKey.c_str()));
      if (current != nullptr && current->lock() == self) {
        g_object_set_data(G_OBJECT(live), qdataKey.c_str(), nullptr);
      }
      g_object_unref(live);
    }
    if (done) {
      std::exchange(done, nullptr)(finished);
    }
  }
};

using TweenRef = std::shared_ptr<Tween>;

void deleteTweenRef(gpointer data) {
  delete static_cast<TweenRef*>(data);
}
void deleteWeakTween(gpointer data) {
  delete static_cast<std::weak_ptr<Tween>*>(data);
}

gboolean onTick(GtkWidget* /*widget*/, GdkFrameClock* clock, gpointer data) {
  const TweenRef tween = *static_cast<TweenRef*>(data);
  const double progress = tween->progressAt(gdk_frame_clock_get_frame_time(clock));
  tween->step(progress);
  if (progress >= 1.0) {
    tween->tickId = 0;  // removed by returning G_SOURCE_REMOVE
    tween->end(true);
    return G_SOURCE_REMOVE;
  }
  return G_SOURCE_CONTINUE;
}

gboolean onTimeout(gpointer data) {
  const TweenRef tween = *static_cast<TweenRef*>(data);
  tween->timeoutId = 0;
  auto* live = static_cast<GtkWidget*>(g_weak_ref_get(&tween->widget));
  if (live != nullptr) {
    tween->step(1.0);
    g_object_unref(live);
  }
  tween->end(live != nullptr);
  return G_SOURCE_REMOVE;
}

std::string qdataKeyFor(const char* key) {
  return std::string("vemba-tween-") + key;
}

std::vector<std::weak_ptr<AnimationBlock::Group>>& openBlocks() {
  static std::vector<std::weak_ptr<AnimationBlock::Group>> blocks;
  return blocks;
}

double smoothstep(double t) {
  return t * t * (3.0 - 2.0 * t);
}

}  // namespace

void runTween(GtkWidget* widget, const char* key, std::chrono::duration<double> duration,
              std::function<void(double)> step, std::function<void(bool)> done) {
  stopTween(widget, key);
  auto tween = std::make_shared<Tween>();
  g_weak_ref_init(&tween->widget, widget);
  tween->qdataKey = qdataKeyFor(key);
  tween->startMicroseconds = g_get_monotonic_time();
  tween->seconds = std::max(0.0, duration.count());
  tween->step = [step = std::move(step)](double t) { step(smoothstep(t)); };
  tween->done = std::move(done);
  g_object_set_data_full(G_OBJECT(widget), tween->qdataKey.c_str(), new std::weak_ptr<Tween>(tween),
                         deleteWeakTween);
  tween->tickId = gtk_widget_add_tick_callback(widget, onTick, new TweenRef(tween), deleteTweenRef);
  const auto bound =
      std::chrono::duration_cast<std::chrono::milliseconds>(duration) + kFrameClockGrace;
  tween->timeoutId = g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(bound.count()),
                                        onTimeout, new TweenRef(tween), deleteTweenRef);
}

void stopTween(GtkWidget* widget, const char* key) {
  const std::string qdataKey = qdataKeyFor(key);
  auto* current =
      static_cast<std::weak_ptr<Tween>*>(g_object_get_data(G_OBJECT(widget), qdataKey.c_str()));
  if (current == nullptr) {
    return;
  }
  if (const TweenRef tween = current->lock()) {
    tween->end(false);
  }
}

struct AnimationBlock::Group {
  double seconds = 0.0;
  std::function<void(bool)> completion;
  int pending = 0;
  bool started = false;
  bool closed = false;
  bool allFinished = true;

  void finishIfDone() {
    if (!closed || pending > 0 || !completion) {
      return;
    }
    auto run = [completion = std::exchange(completion, nullptr), finished = allFinished] {
      completion(finished);
    };
    if (started) {
      postToMainLoop(std::move(run));
    } else {
      postToMainLoopAfter(std::chrono::duration<double>(seconds), std::move(run));
    }
  }
};

AnimationBlock::AnimationBlock(std::chrono::duration<double> duration,
                               std::function<void(bool)> completion)
    : group_(std::make_shared<Group>()) {
  group_->seconds = duration.count();
  group_->completion = std::move(completion);
  openBlocks().push_back(group_);
}

AnimationBlock::~AnimationBlock() {
  auto& blocks = openBlocks();
  std::erase_if(blocks, [this](const auto& weak) { return weak.lock() == group_; });
  group_->closed = true;
  group_->finishIfDone();
}

void applyOpacity(GtkWidget* widget, double from, double to) {
  auto& blocks = openBlocks();
  const auto group = blocks.empty() ? nullptr : blocks.back().lock();
  if (!group) {
    stopTween(widget, kOpacityKey);
    gtk_widget_set_opacity(widget, to);
    return;
  }
  group->started = true;
  ++group->pending;
  runTween(
      widget, kOpacityKey, std::chrono::duration<double>(group->seconds),
      [widget, from, to](double t) { gtk_widget_set_opacity(widget, from + (to - from) * t); },
      [group, widget, to](bool finished) {
        if (!finished) {
          // Replaced or stopped: the new value (or the view's model value) is already set.
        } else {
          gtk_widget_set_opacity(widget, to);
        }
        group->allFinished = group->allFinished && finished;
        --group->pending;
        group->finishIfDone();
      });
}

void stopAnimations(GtkWidget* widget) {
  stopTween(widget, kOpacityKey);
}

namespace {

gboolean runPosted(gpointer data) {
  (*static_cast<std::function<void()>*>(data))();
  return G_SOURCE_REMOVE;
}

void deletePosted(gpointer data) {
  delete static_cast<std::function<void()>*>(data);
}

}  // namespace

void postToMainLoop(std::function<void()> work) {
  g_idle_add_full(G_PRIORITY_DEFAULT, runPosted, new std::function<void()>(std::move(work)),
                  deletePosted);
}

void postToMainLoopAfter(std::chrono::duration<double> delay, std::function<void()> work) {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(delay).count();
  g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(std::max<long long>(0, ms)), runPosted,
                     new std::function<void()>(std::move(work)), deletePosted);
}

}  // namespace vemba::linux_platform
