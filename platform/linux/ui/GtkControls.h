// The GTK views the factory makes: plain container views, push buttons and progress lines.
// Owned by the core through shared pointers; main thread only.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "GtkViewBase.h"

namespace vemba::linux_platform {

// A plain view: a container that places its subviews with a GtkConstraintLayout.
class GtkPlainView final : public GtkViewBase<platform::View> {
 public:
  GtkPlainView();
};

// A view over a widget the backend lays out itself (a navigation container's column of bar and
// content, a window's overlay). Subviews added to it are not placed.
class GtkWidgetView final : public GtkViewBase<platform::View> {
 public:
  explicit GtkWidgetView(GtkWidget* widget) : GtkViewBase(widget) {}
};

// A GtkButton with a label; the theme's padding and minimum size are removed so the core's
// constraints alone decide its size.
class GtkButtonView final : public GtkViewBase<platform::Button>,
                            public std::enable_shared_from_this<GtkButtonView> {
 public:
  GtkButtonView();
  ~GtkButtonView() override;
  GtkButtonView(const GtkButtonView&) = delete;
  GtkButtonView& operator=(const GtkButtonView&) = delete;

  void setTitle(std::string title) override;
  void setTitleColor(platform::Color color) override;
  void setSystemFont(double size, FontWeight weight) override;
  void setAction(std::function<void()> action) override;

  std::string title() const;  // tests and tools

 private:
  std::function<void()> action_;
  unsigned long clickedHandler_ = 0;
};

// A 1-logical-pixel GtkProgressBar in the tint colour; the theme's trough height, borders and
// shadows are overridden so the line is exactly as high as the core's constraint says.
class GtkProgressBarView final : public GtkViewBase<platform::ProgressBar> {
 public:
  GtkProgressBarView();

  void setProgress(float progress, bool animated) override;
  float progress() const override { return progress_; }
  void setTintColor(platform::Color color) override;

  // The fraction GTK currently draws (moves towards progress() while animated).
  double shownFraction() const;

  static constexpr std::chrono::duration<double> kAnimationDuration{0.25};

 private:
  float progress_ = 0.0F;
};

}  // namespace vemba::linux_platform
