// The GTK half of the user-interface factory (platform::Ui): screens, views, controls, layout and
// animation. Web views are left to a subclass (LinuxUi.h, which joins the WebKitGTK half), so
// that this folder never depends on web/. Main thread only.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Ui.h"

namespace vemba::linux_platform {

class GtkUi : public platform::Ui {
 public:
  static constexpr std::string_view kUserInterfaceSystemVersion = "26.0";

  std::shared_ptr<platform::Screen> createScreen() override;
  std::shared_ptr<platform::Screen> createNavigationScreen(
      std::shared_ptr<platform::Screen> root) override;
  std::shared_ptr<platform::View> createView() override;
  std::shared_ptr<platform::Button> createButton() override;
  std::shared_ptr<platform::ProgressBar> createProgressBar() override;
  std::shared_ptr<platform::EmitterLayer> createEmitterLayer() override;

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

// Initialises GTK on the first call (gtk_init_check()) and says whether it is usable; false,
// after one error line in the log, when there is no display. Main thread only.
bool startGtk();
// True once GTK is initialised, by the host or by startGtk(); never initialises it.
bool gtkStarted();

}  // namespace vemba::linux_platform
