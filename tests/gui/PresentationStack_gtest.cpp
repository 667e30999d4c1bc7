// The GTK screens drive the shared presentation stack through real transitions: completions that
// meet a dismissal under way run once, in order, and never inside the call that started it.
#include <glib.h>

#include <string>
#include <vector>

#include "GuiTest.h"
#include "vemba/linux/Screens.h"

namespace vemba::gui_test {
namespace {

using std::chrono::milliseconds;

class PresentationStackGuiTest : public GuiTest {
 protected:
  void SetUp() override {
    GuiTest::SetUp();
    // A widget torn down twice shows as a critical from GTK or GObject.
    for (const char* domain : {"Gtk", "GLib-GObject"}) {
      handlers.emplace_back(domain,
                            g_log_set_handler(domain, G_LOG_LEVEL_CRITICAL, countCritical, this));
    }
  }
  void TearDown() override {
    for (const auto& [domain, id] : handlers) {
      g_log_remove_handler(domain, id);
    }
    GuiTest::TearDown();
  }
  static void countCritical(const gchar* /*domain*/, GLogLevelFlags /*level*/,
                            const gchar* /*message*/, gpointer self) {
    ++static_cast<PresentationStackGuiTest*>(self)->criticals;
  }
  std::function<void()> note(std::string text) {
    return [this, text] { log.push_back(text); };
  }

  std::vector<std::pair<const char*, guint>> handlers;
  int criticals = 0;
  std::vector<std::string> log;
};

TEST_F(PresentationStackGuiTest, ADismissalDuringTheTransitionCompletesThePresentationFirst) {
  const auto host = screenForWindow(window);
  for (const bool animatedDismissal : {true, false}) {
    SCOPED_TRACE(animatedDismissal ? "animated dismissal" : "immediate dismissal");
    log.clear();
    auto child = ui->createScreen();
    const std::weak_ptr<platform::Screen> weakChild = child;
    host->presentScreen(std::move(child), /*animated=*/true, note("presented"));
    host->dismiss(animatedDismissal, [&] {
      log.push_back(weakChild.expired() ? "dismissed, released" : "dismissed, held");
    });
    EXPECT_TRUE(log.empty()) << "nothing runs inside the calls";
    ASSERT_TRUE(runUntil([&] { return log.size() >= 2; }));
    runFor(milliseconds(400));  // the presentation's own transition would have ended by now
    EXPECT_EQ(log, (std::vector<std::string>{"presented", "dismissed, released"}));
    EXPECT_EQ(host->presentedScreen(), nullptr);
  }
  EXPECT_EQ(criticals, 0);
}

TEST_F(PresentationStackGuiTest, ALowerDismissalTakesOverAnAnimatedOneHigherUp) {
  const auto host = screenForWindow(window);
  auto middle = ui->createScreen();
  auto top = ui->createScreen();
  host->presentScreen(middle, false, {});
  middle->presentScreen(top, false, note("top presented"));
  ASSERT_TRUE(runUntil([&] { return !log.empty(); }));

  middle->dismiss(/*animated=*/true, note("upper dismissed"));
  host->dismiss(/*animated=*/false, note("lower dismissed"));
  ASSERT_TRUE(runUntil([&] { return log.size() >= 3; }));
  runFor(milliseconds(400));  // the upper transition's own end must not run anything again

  EXPECT_EQ(log, (std::vector<std::string>{"top presented", "upper dismissed", "lower dismissed"}));
  EXPECT_EQ(host->presentedScreen(), nullptr);
  EXPECT_EQ(middle->presentedScreen(), nullptr);
  EXPECT_EQ(top->presentingScreen(), nullptr);
  EXPECT_EQ(criticals, 0) << "a presentation was torn down twice";

  // Both screens can be presented again, one over the other.
  host->presentScreen(middle, false, note("middle again"));
  middle->presentScreen(top, false, note("top again"));
  ASSERT_TRUE(runUntil([&] { return log.size() >= 5; }));
  EXPECT_EQ(host->presentedScreen(), middle);
  EXPECT_EQ(middle->presentedScreen(), top);
}

}  // namespace
}  // namespace vemba::gui_test
