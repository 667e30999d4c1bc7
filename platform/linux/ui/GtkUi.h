// The GTK user-interface factory (platform::Ui). Made once, lazily, on the main thread by
// gtkUi(); lives for the process. Main thread only.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Ui.h"

namespace vemba::linux_platform {

class GtkUi final : public platform::Ui {
 public:
  static constexpr std::string_view kUserInterfaceSystemVersion = "26.0";

  std::shared_ptr<platform::Screen> createScreen() override;
  std::shared_ptr<platform::Screen> createNavigationScreen(
      std::shared_ptr<platform::Screen> root) override;
  std::shared_ptr<platform::View> createView() override;
  std::shared_ptr<platform::Button> createButton() override;
  std::shared_ptr<platform::ProgressBar> createProgressBar() override;
  std::shared_ptr<platform::UserContentController> createUserContentController() override;
  std::shared_ptr<platform::WebView> createWebView(
      platform::Rect frame, const platform::WebViewConfiguration& configuration) override;
  std::shared_ptr<platform::EmitterLayer> createEmitterLayer() override;
  // Keeps one web process running for the next ad view (see web/WarmWebView.h).
  void prepareWebView(std::function<void()> lost) override;
  void releasePreparedWebView() override;

  // Safe-area anchors are the view's own edges: a desktop window has no insets.
  void activate(const std::vector<platform::LayoutConstraint>& constraints) override;

  void animate(std::chrono::duration<double> duration, std::function<void()> animations,
               std::function<void(bool finished)> completion) override;
  // Always kUserInterfaceSystemVersion: GTK 4's symbolic icons and flat controls look like the
  // newest phone system's, not like the kernel's release, so every rule that changes with the
  // system version takes its newest branch on Linux (the plain "xmark" close glyph, the
  // under-page colour).
  std::string userInterfaceSystemVersion() const override {
    return std::string(kUserInterfaceSystemVersion);
  }
  std::chrono::duration<double> navigationBarHideShowDuration() const override;
  // The monotonic clock in seconds (the clock frame clocks and the emitter run on).
  double currentMediaTime() const override;
};

// The process's GTK user interface: initialises GTK on the first call (gtk_init_check()); null,
// after one error line in the log, when there is no display. Main thread only.
platform::Ui* gtkUi();
// True once GTK is initialised, by the host or by gtkUi(); never initialises it.
bool gtkStarted();

}  // namespace vemba::linux_platform
