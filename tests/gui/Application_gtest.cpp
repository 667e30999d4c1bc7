// The host application on GTK: windows, the key window, scenes and the URL opener.
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
  void TearDown() override {
    setUrlOpener({});
    GuiTest::TearDown();
  }
  platform::Application& app() { return *linux_platform::gtkApplication(); }
};

// (The ad tests show javascript:, file:, data: and custom-scheme URLs refused end to end.)
TEST_F(ApplicationTest, OpenerReceivesOnlyAllowedSchemes) {
  std::vector<std::string> opened;
  setUrlOpener([&](const std::string& url) { opened.push_back(url); });
  const struct {
    const char* url;
    bool allowed;
  } cases[] = {
      {"https://shop.quillfeather.test/orders/7", true},
      {"http://127.0.0.1:8080/help", true},
      {"HTTPS://QUILLFEATHER.TEST/", true},
      {"mailto:help@quillfeather.test", true},
      {"tel:+15550100", true},
      {"ftp://quillfeather.test/a", false},
  };
  std::vector<std::string> expected;
  for (const auto& c : cases) {
    const auto url = Url::parse(c.url);
    ASSERT_TRUE(url.has_value()) << c.url;
    EXPECT_EQ(app().canOpenURL(*url), c.allowed) << c.url;
    app().open(*url);
    if (c.allowed) {
      expected.push_back(url->absoluteString());
    }
  }
  EXPECT_EQ(opened, expected);
}

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
