// Frame-clock animation for the GTK backend: tweens of one value of a widget, and the block of
// Ui::animate() that turns view changes into tweens and runs one completion when they have all
// ended. Main thread only.
//
// A tween advances on the widget's frame clock (so it is smooth while the widget is on screen)
// and is also bounded by a main-loop timer, so it always ends even when its widget is unmapped
// or destroyed: with finished = true when it reached its end value, false when it was replaced
// by a new value, stopped, or its widget went away.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

using GtkWidget = struct _GtkWidget;

namespace vemba::linux_platform {

// Runs `step(progress)` with an eased progress from 0 to 1 over `duration` on `widget`'s frame
// clock, then `done(finished)` (synchronously, from the main loop). Replaces (ends unfinished) a
// running tween of the same `key` on the same widget.
void runTween(GtkWidget* widget, const char* key, std::chrono::duration<double> duration,
              std::function<void(double progress)> step, std::function<void(bool)> done);
// Ends the running tween of `key` on `widget` unfinished, where its value stands; nothing when
// there is none.
void stopTween(GtkWidget* widget, const char* key);

// The block of one Ui::animate() call, alive while its animations run. Changes made to views
// while a block is open are animated over its duration; `completion` runs on a later main-loop
// turn once every tween started in it has ended (or once the duration has passed when none was
// started), with true when all of them ran to their end.
class AnimationBlock {
 public:
  AnimationBlock(std::chrono::duration<double> duration, std::function<void(bool)> completion);
  ~AnimationBlock();
  AnimationBlock(const AnimationBlock&) = delete;
  AnimationBlock& operator=(const AnimationBlock&) = delete;

  struct Group;

 private:
  std::shared_ptr<Group> group_;
};

// Sets `widget`'s opacity to `to`: animated from `from` when an AnimationBlock is open, at once
// (stopping any tween of it) otherwise.
void applyOpacity(GtkWidget* widget, double from, double to);
// Ends every value tween of `widget` unfinished (the widget is going away).
void stopAnimations(GtkWidget* widget);

// Runs `work` on a later turn of the main loop.
void postToMainLoop(std::function<void()> work);
// Runs `work` on the main loop after `delay`.
void postToMainLoopAfter(std::chrono::duration<double> delay, std::function<void()> work);

}  // namespace vemba::linux_platform
