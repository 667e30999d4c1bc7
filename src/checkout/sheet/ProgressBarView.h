// The one-point loading line at the top of the checkout screen, and the rule that drives it from
// the web view's estimated progress.
//
// Owner: the checkout web view controller, through std::shared_ptr (the delayed fade holds the
// bar strongly until it has run). Main thread only.
#pragma once

#include <chrono>
#include <memory>

#include "platform/Geometry.h"

namespace vemba::platform {
class ProgressBar;
class Ui;
class View;
}  // namespace vemba::platform

namespace vemba::checkout {

class ProgressBarView : public std::enable_shared_from_this<ProgressBarView> {
 public:
  // How long after stopAnimating() the bar starts to fade, and how long the fade takes.
  static constexpr std::chrono::milliseconds kFadeDelay{100};
  static constexpr std::chrono::milliseconds kFadeDuration{200};
  static constexpr double kBarHeight = 1.0;

  // A bar view at `frame` holding the progress line, tinted with the configuration's tintColor
  // as it is now (a later change does not recolour it). It starts hidden, at progress 0: the
  // state stopAnimating() leaves, so a bar that was never started draws nothing on any platform.
  static std::shared_ptr<ProgressBarView> create(platform::Ui& ui, platform::Rect frame = {});

  ProgressBarView(const ProgressBarView&) = delete;
  ProgressBarView& operator=(const ProgressBarView&) = delete;

  platform::View& view() const { return *view_; }
  const std::shared_ptr<platform::View>& viewPtr() const { return view_; }
  // The line itself, made on first access: bar style, progress 0, laid out by constraints.
  platform::ProgressBar& progressBar();

  // Adds the bar view to `superview` (moving it there if it is elsewhere) and pins the line's
  // leading and trailing edges to the superview's safe area.
  void moveToSuperview(platform::View& superview);

  // The driving rule, for each new estimated progress `progress` of the web view: the line moves
  // forward to it (never backwards, animated); below 1 the bar is shown, at 1 or more it stops.
  void progressDidChange(double progress);

  // Moves the line forward to `progress`; a value at or below the current one changes nothing.
  void setProgress(float progress, bool animated);
  // Shows the bar: fully opaque and not hidden.
  void startAnimating();
  // kFadeDelay later, fades the bar out over kFadeDuration, then hides it, makes it opaque again
  // and empties the line without animation, ready for the next load.
  void stopAnimating();

 private:
  ProgressBarView() = default;

  platform::Ui* ui_ = nullptr;
  std::shared_ptr<platform::View> view_;
  std::shared_ptr<platform::ProgressBar> progressBar_;
};

}  // namespace vemba::checkout
