// A fixture for GUI tests: GTK initialised once per process, a fresh 800×600 window per test,
// and the main loop driven until a condition holds (bounded, never a sleep). A test fails when GTK
// or GObject logs a critical (a widget torn down twice, a stale constraint, ...).
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "MainLoop.h"
#include "platform/Ui.h"

using GtkWindow = struct _GtkWindow;

namespace vemba::gui_test {

class GuiTest : public ::testing::Test {
 protected:
  static constexpr int kWindowWidth = 800;
  static constexpr int kWindowHeight = 600;

  // Skips when the process has no display at all; fails when GTK cannot use the one it has.
  void SetUp() override;
  void TearDown() override;

  // Runs the main loop until `condition` holds: false after `limit`, a bound generous enough for
  // a sanitizer build on a loaded machine (a met condition returns at once).
  static bool runUntil(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::milliseconds(10000)) {
    return tests::runMainLoopUntil(condition, limit);
  }
  static void runFor(std::chrono::milliseconds span) { tests::runMainLoopFor(span); }
  // Presents a new full-screen screen over the window, without animation; its root view.
  platform::View& presentFullScreen();

  platform::Ui* ui = nullptr;
  GtkWindow* window = nullptr;
  std::shared_ptr<platform::Screen> fullScreen;  // the last one presentFullScreen() presented

 private:
  static void failOnCritical(const gchar* domain, GLogLevelFlags level, const gchar* message,
                             gpointer unused);
  std::vector<std::pair<const char*, guint>> handlers_;
};

}  // namespace vemba::gui_test
