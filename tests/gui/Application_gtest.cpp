// The host application on GTK: windows, the key window and scenes. (The opener's
// scheme rule is the core's; the ad tests show refused schemes end to end.)
#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "GuiTest.h"
#include "platform/Application.h"
#include "platform/Services.h"
#include "ui/GtkApplication.h"
#include "vemba/linux/Screens.h"

namespace vemba::gui_test {
namespace {

class ApplicationTest : public GuiTest {
 protected:
  platform::Application& app() { return *linux_platform::gtkApplication(); }
};

TEST_F(ApplicationTest, KeyWindowIsTheActiveToplevelAndScenesAreEmpty) {
  EXPECT_TRUE(app().connectedScenes().empty());
  // Without a window manager, Xvfb gives the presented window the input focus within a few
  // main-loop turns.
  ASSERT_TRUE(runUntil([&] { return gtk_window_is_active(window) == TRUE; }));
  GtkWindow* second = GTK_WINDOW(gtk_window_new());
  gtk_window_present(second);
  ASSERT_TRUE(runUntil([&] { return gtk_window_is_active(second) == TRUE; }));

  const auto windows = app().windows();
  int keyCount = 0;
  bool foundFirst = false;
  for (const auto& candidate : windows) {
    keyCount += candidate->isKeyWindow() ? 1 : 0;
    if (candidate->rootScreen() == screenForWindow(window)) {
      foundFirst = true;
      EXPECT_FALSE(candidate->isKeyWindow());
    }
    if (candidate->rootScreen() == screenForWindow(second)) {
      EXPECT_TRUE(candidate->isKeyWindow());
    }
  }
  EXPECT_EQ(keyCount, 1);
  EXPECT_TRUE(foundFirst);

  // A window that went away is neither key nor has a screen.
  gtk_window_destroy(second);
  runFor(std::chrono::milliseconds(20));
  for (const auto& candidate : windows) {
    if (candidate->rootScreen() == nullptr) {
      EXPECT_FALSE(candidate->isKeyWindow());
    }
  }
}

TEST_F(ApplicationTest, ScreenForWindowIsStableAndWrapsTheContentOnce) {
  GtkWidget* content = gtk_label_new("Quillfeather");
  gtk_window_set_child(window, content);
  const auto screen = screenForWindow(window);
  EXPECT_EQ(screen, screenForWindow(window));
  EXPECT_EQ(screenForWindow(nullptr), nullptr);
  screen->view();
  screen->view();
  GtkWidget* overlay = gtk_window_get_child(window);
  ASSERT_TRUE(GTK_IS_OVERLAY(overlay));
  EXPECT_EQ(gtk_overlay_get_child(GTK_OVERLAY(overlay)), content);
}

}  // namespace
}  // namespace vemba::gui_test
