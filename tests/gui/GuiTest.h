// A fixture for GUI tests: GTK initialised once per process, a fresh 800×600 window per test,
// and the main loop driven until a condition holds (bounded, never a sleep).
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

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

  static bool runUntil(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::milliseconds(3000)) {
    return testing::runMainLoopUntil(condition, limit);
  }
  static void runFor(std::chrono::milliseconds span) { testing::runMainLoopFor(span); }

  platform::Ui* ui = nullptr;
  GtkWindow* window = nullptr;
};

}  // namespace vemba::gui_test
