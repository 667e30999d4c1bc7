// The host application on GTK: windows, the key window (also while another application has the
// focus), scenes, and who decides which URLs leave the application.
#include "platform/Application.h"

#include <gtk/gtk.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "GuiTest.h"
#include "platform/Services.h"
#include "ui/GtkApplication.h"
#include "vemba/linux/Screens.h"

namespace vemba::gui_test {
namespace {

using std::chrono::milliseconds;

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

  // The first window is listed; the one active last is the only key window.
  const auto windows = app().windows();
  const auto expectOnlySecondIsKey = [&] {
    bool foundFirst = false;
    for (const auto& candidate : app().windows()) {
      foundFirst = foundFirst || candidate->rootScreen() == screenForWindow(window);
      EXPECT_EQ(candidate->isKeyWindow(), candidate->rootScreen() == screenForWindow(second));
    }
    EXPECT_TRUE(foundFirst);
  };
  expectOnlySecondIsKey();

  // Another application's window takes the focus (ours are in the background): the key window
  // is still the one active last. The other application quits by itself.
  ASSERT_EQ(std::system("/usr/bin/python3 -c \"import gi; gi.require_version('Gtk', '4.0'); "
                        "from gi.repository import Gtk, GLib; Gtk.init(); Gtk.Window().present(); "
                        "GLib.timeout_add(2500, lambda: exit(0)); GLib.MainLoop().run()\" "
                        "2>/dev/null &"),
            0);
  ASSERT_TRUE(runUntil([&] { return gtk_window_is_active(second) == FALSE; }, milliseconds(5000)));
  EXPECT_FALSE(gtk_window_is_active(window));
  expectOnlySecondIsKey();

  // A window that went away is neither key nor has a screen.
  gtk_window_destroy(second);
  runFor(std::chrono::milliseconds(20));
  for (const auto& candidate : windows) {
    if (candidate->rootScreen() == nullptr) {
      EXPECT_FALSE(candidate->isKeyWindow());
    }
  }
}

TEST_F(ApplicationTest, TheDefaultOpenerKeepsToFourSchemesAHostsOpenerDecidesEveryUrl) {
  const Url custom = *Url::parse("lumenmoss-app://orders/7");
  EXPECT_FALSE(app().canOpenURL(custom));
  EXPECT_TRUE(app().canOpenURL(*Url::parse("mailto:care@lumenmoss.test")));
  app().open(custom);  // refused with a log line: nothing is launched
  std::vector<std::string> opened;
  setUrlOpener([&](const std::string& url) {
    opened.push_back(url);
    throw std::runtime_error("the host's opener went wrong");  // stopped in the library
  });
  EXPECT_TRUE(app().canOpenURL(custom));
  app().open(custom);
  EXPECT_EQ(opened, std::vector<std::string>{custom.absoluteString()});
  setUrlOpener({});
}

TEST_F(ApplicationTest, ScreenForWindowIsStableAndWrapsTheContentOnce) {
  GtkWidget* content = gtk_label_new("Quillfeather");
  gtk_window_set_child(window, content);
  const auto screen = platform::Screen::of(screenForWindow(window));
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
