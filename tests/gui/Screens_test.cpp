// GTK screens inside a real window: the widgets and transitions the backend adds around the shared
// presentation stack (the stack's own rules are tested on their own).
#include "vemba/linux/Screens.h"

#include <glib.h>
#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "GuiTest.h"
#include "ui/GtkScreen.h"
#include "ui/GtkViewBase.h"

namespace vemba::gui_test {
namespace {

using linux_platform::GtkScreen;
using platform::ModalPresentationStyle;
using std::chrono::milliseconds;
using Log = std::vector<std::string>;

// Records the lifecycle calls of a screen and of its presentation, in order.
struct Recorder final : platform::ScreenDelegate, platform::PresentationDelegate {
  Log* log;
  explicit Recorder(Log* into) : log(into) {}
  void viewDidLoad() override { log->push_back("viewDidLoad"); }
  void viewWillAppear() override { log->push_back("viewWillAppear"); }
  void presentationControllerDidDismiss() override { log->push_back("didDismiss"); }
};

class ScreensTest : public GuiTest {
 protected:
  void SetUp() override {
    GuiTest::SetUp();
    if (window != nullptr) {
      host = platform::Screen::of(screenForWindow(window));
    }
  }
  void TearDown() override {
    host.reset();
    GuiTest::TearDown();
  }

  std::shared_ptr<platform::Screen> newScreen(const std::shared_ptr<Recorder>& recorder) {
    auto screen = ui->createScreen();
    screen->setDelegate(recorder);
    screen->setPresentationDelegate(recorder);
    return screen;
  }
  std::function<void()> note(std::string text) {
    return [this, text] { log.push_back(text); };
  }

  std::shared_ptr<platform::Screen> host;
  Log log;
};

TEST_F(ScreensTest, AnimatedPresentationRunsItsCompletionAfterTheTransitionOverTheContent) {
  auto recorder = std::make_shared<Recorder>(&log);
  auto child = newScreen(recorder);
  child->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
  bool presented = false;
  host->presentScreen(child, /*animated=*/true, [&] { presented = true; });

  EXPECT_FALSE(presented) << "never within the call";
  EXPECT_EQ(log, (Log{"viewDidLoad", "viewWillAppear"}));
  EXPECT_EQ(host->presentedScreen(), child);
  const gint64 start = g_get_monotonic_time();
  ASSERT_TRUE(runUntil([&] { return presented; }));
  EXPECT_GE(g_get_monotonic_time() - start, 200'000) << "completion before the transition ended";

  // The window's content was wrapped once; the presented screen covers it.
  GtkWidget* overlay = gtk_window_get_child(window);
  ASSERT_TRUE(GTK_IS_OVERLAY(overlay));
  auto* gtkChild = dynamic_cast<GtkScreen*>(child.get());
  EXPECT_EQ(gtk_widget_get_parent(gtkChild->presentationWidget()), overlay);
  EXPECT_EQ(gtk_widget_get_width(gtkChild->presentationWidget()), kWindowWidth);
  EXPECT_DOUBLE_EQ(gtk_widget_get_opacity(gtkChild->presentationWidget()), 1.0);
}

TEST_F(ScreensTest, PresenterHoldsTheScreenAndDelegateUntilTheDismissalRemovedItsWidgets) {
  auto recorder = std::make_shared<Recorder>(&log);
  auto child = newScreen(recorder);
  const std::weak_ptr<platform::Screen> weakChild = child;
  const std::weak_ptr<Recorder> weakRecorder = recorder;
  host->presentScreen(child, /*animated=*/false, note("presented"));
  EXPECT_NE(log.back(), "presented") << "never within the call";
  ASSERT_TRUE(runUntil([&] { return log.back() == "presented"; }));
  child.reset();
  recorder.reset();
  ASSERT_FALSE(weakChild.expired() || weakRecorder.expired());

  std::optional<bool> releasedAtCompletion;
  host->dismiss(/*animated=*/true,
                [&] { releasedAtCompletion = weakChild.expired() && weakRecorder.expired(); });
  ASSERT_TRUE(runUntil([&] { return releasedAtCompletion.has_value(); }));
  EXPECT_TRUE(*releasedAtCompletion);
  GtkWidget* overlay = gtk_window_get_child(window);
  EXPECT_EQ(gtk_widget_get_first_child(overlay), gtk_widget_get_last_child(overlay))
      << "the presentation's widgets stay behind";
}

TEST_F(ScreensTest, AWindowsOwnScreenIsNeverPresentedAndDismissOfNothingCompletesLater) {
  GtkWindow* other = GTK_WINDOW(gtk_window_new());
  bool ran = false;
  host->presentScreen(platform::Screen::of(screenForWindow(other)), false, [&] { ran = true; });
  auto lonely = ui->createScreen();
  bool done = false;
  lonely->dismiss(true, [&] { done = true; });
  EXPECT_FALSE(done);
  EXPECT_TRUE(runUntil([&] { return done; }, milliseconds(100)));
  runFor(milliseconds(100));
  EXPECT_FALSE(ran);
  EXPECT_EQ(host->presentedScreen(), nullptr);
  gtk_window_destroy(other);
}

// The presentation's transition is stopped by the dismissal's tear-down; its completion runs
// once, before the dismissal's, and never inside the calls.
TEST_F(ScreensTest, ADismissalDuringTheTransitionCompletesThePresentationFirst) {
  for (const bool animatedDismissal : {true, false}) {
    SCOPED_TRACE(animatedDismissal ? "animated dismissal" : "immediate dismissal");
    log.clear();
    auto child = ui->createScreen();
    const std::weak_ptr<platform::Screen> weakChild = child;
    host->presentScreen(std::move(child), /*animated=*/true, note("presented"));
    host->dismiss(animatedDismissal, [&] {
      log.push_back(weakChild.expired() ? "dismissed, released" : "dismissed, held");
    });
    EXPECT_TRUE(log.empty());
    ASSERT_TRUE(runUntil([&] { return log.size() >= 2; }));
    runFor(milliseconds(400));  // the presentation's own transition would have ended by now
    EXPECT_EQ(log, (Log{"presented", "dismissed, released"}));
    EXPECT_EQ(host->presentedScreen(), nullptr);
  }
}

// Tearing down the upper fade ends its dismissal re-entrantly; the screens can be presented again.
TEST_F(ScreensTest, ALowerDismissalTakesOverAnAnimatedOneHigherUp) {
  auto middle = ui->createScreen();
  auto top = ui->createScreen();
  host->presentScreen(middle, false, {});
  middle->presentScreen(top, false, note("top presented"));
  ASSERT_TRUE(runUntil([&] { return !log.empty(); }));

  middle->dismiss(/*animated=*/true, note("upper dismissed"));
  host->dismiss(/*animated=*/false, note("lower dismissed"));
  ASSERT_TRUE(runUntil([&] { return log.size() >= 3; }));
  runFor(milliseconds(400));  // the upper transition's own end must not run anything again
  EXPECT_EQ(log, (Log{"top presented", "upper dismissed", "lower dismissed"}));
  EXPECT_EQ(host->presentedScreen(), nullptr);
  EXPECT_EQ(top->presentingScreen(), nullptr);

  host->presentScreen(middle, false, note("middle again"));
  middle->presentScreen(top, true, note("top again"));
  ASSERT_TRUE(runUntil([&] { return log.size() >= 5; }));
  EXPECT_EQ(middle->presentedScreen(), top);
  EXPECT_EQ(gtk_widget_get_root(linux_platform::gtkWidgetOf(top->view())), GTK_ROOT(window));
}

class SheetTest : public ScreensTest {
 protected:
  void presentSheet() {
    recorder = std::make_shared<Recorder>(&log);
    root = ui->createScreen();
    root->setDelegate(recorder);
    root->setTitle("Pay Quillfeather");
    platform::BarButtonItem close;
    close.action = [this] { ++closePresses; };
    root->setRightBarButtonItem(close);
    sheet = ui->createNavigationScreen(root);
    sheet->setPresentationDelegate(recorder);
    bool presented = false;
    host->presentScreen(sheet, true, [&] { presented = true; });
    ASSERT_TRUE(runUntil([&] { return presented; }));
    gtkSheet = dynamic_cast<GtkScreen*>(sheet.get());
    log.clear();
  }

  bool pressEscape() { return gtkSheet->escape(); }

  std::shared_ptr<Recorder> recorder;
  std::shared_ptr<platform::Screen> root;
  std::shared_ptr<platform::Screen> sheet;
  GtkScreen* gtkSheet = nullptr;
  int closePresses = 0;
};

TEST_F(SheetTest, ShowsTheRootsTitleAndCloseItemOverADimmedBackdrop) {
  presentSheet();
  ASSERT_NE(gtkSheet->sheetPanel(), nullptr);
  ASSERT_NE(gtkSheet->sheetBackdrop(), nullptr);
  EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(gtkSheet->titleLabel())), "Pay Quillfeather");
  root->setTitle("Receipt");
  EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(gtkSheet->titleLabel())), "Receipt");
  ASSERT_NE(gtkSheet->rightItemButton(), nullptr);
  EXPECT_STREQ(gtk_button_get_icon_name(GTK_BUTTON(gtkSheet->rightItemButton())),
               "window-close-symbolic");
  g_signal_emit_by_name(gtkSheet->rightItemButton(), "clicked");
  EXPECT_EQ(closePresses, 1);
  EXPECT_EQ(gtk_widget_get_width(gtkSheet->sheetPanel()), GtkScreen::kSheetMaxWidth);
  EXPECT_EQ(gtk_widget_get_width(gtkSheet->sheetBackdrop()), kWindowWidth);
  // The panel follows the window: narrower than its widest, and back.
  gtk_window_set_default_size(window, 500, 400);
  EXPECT_TRUE(runUntil([&] { return gtk_widget_get_width(gtkSheet->sheetPanel()) == 500; }));
  gtk_window_set_default_size(window, kWindowWidth, kWindowHeight);
  EXPECT_TRUE(runUntil(
      [&] { return gtk_widget_get_width(gtkSheet->sheetPanel()) == GtkScreen::kSheetMaxWidth; }));
  EXPECT_EQ(sheet->visibleScreen(), root);
  EXPECT_EQ(root->navigationContainer(), sheet.get());
}

TEST_F(SheetTest, EscapeIsTheUsersDismissalButNotDuringTheCoresOwn) {
  // The core's own dismissal (the root dismisses its container) is never reported, and Escape
  // during it is swallowed without a second dismissal.
  presentSheet();
  bool dismissed = false;
  root->dismiss(true, [&] { dismissed = true; });
  EXPECT_TRUE(pressEscape());
  ASSERT_TRUE(runUntil([&] { return dismissed; }));
  runFor(milliseconds(50));
  EXPECT_TRUE(log.empty());

  // Escape dismisses the sheet, then tells the presentation delegate once the sheet is gone.
  presentSheet();
  bool presentedAtNotice = true;
  ASSERT_TRUE(pressEscape());
  EXPECT_TRUE(log.empty()) << "told before the dismissal completed";
  ASSERT_TRUE(runUntil([&] { return !log.empty(); }));
  presentedAtNotice = host->presentedScreen() != nullptr;
  EXPECT_EQ(log, (Log{"didDismiss"}));
  EXPECT_FALSE(presentedAtNotice);
  EXPECT_FALSE(pressEscape()) << "a dismissed sheet no longer takes Escape";
}

TEST_F(SheetTest, NavigationBarHidesOverTheReportedDuration) {
  presentSheet();
  GtkRevealer* revealer = GTK_REVEALER(gtkSheet->barRevealer());
  sheet->setNavigationBarHidden(true, /*animated=*/true);
  EXPECT_TRUE(sheet->isNavigationBarHidden());
  EXPECT_EQ(std::chrono::milliseconds(gtk_revealer_get_transition_duration(revealer)),
            ui->navigationBarHideShowDuration());
  EXPECT_TRUE(gtk_revealer_get_child_revealed(revealer)) << "hidden at once despite animation";
  EXPECT_TRUE(runUntil([&] { return !gtk_revealer_get_child_revealed(revealer); }));
  sheet->setNavigationBarHidden(false, /*animated=*/false);
  EXPECT_EQ(gtk_revealer_get_transition_duration(revealer), 0U);
  EXPECT_TRUE(runUntil([&] { return gtk_revealer_get_child_revealed(revealer) == TRUE; }));
}

}  // namespace
}  // namespace vemba::gui_test
