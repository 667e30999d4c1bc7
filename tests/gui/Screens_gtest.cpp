// Presentation, dismissal and user dismissal of GTK screens inside a real window.
#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "GuiTest.h"
#include "ui/GtkScreen.h"
#include "ui/GtkViewBase.h"
#include "vemba/linux/Screens.h"

namespace vemba::gui_test {
namespace {

using linux_platform::GtkScreen;
using platform::ModalPresentationStyle;
using std::chrono::milliseconds;

// Records the lifecycle calls of a screen and of its presentation, in order.
struct Recorder final : platform::ScreenDelegate, platform::PresentationDelegate {
  std::vector<std::string>* log;
  explicit Recorder(std::vector<std::string>* into) : log(into) {}
  void viewDidLoad() override { log->push_back("viewDidLoad"); }
  void viewWillAppear() override { log->push_back("viewWillAppear"); }
  void presentationControllerDidDismiss() override { log->push_back("didDismiss"); }
};

class ScreensTest : public GuiTest {
 protected:
  void SetUp() override {
    GuiTest::SetUp();
    if (window != nullptr) {
      host = screenForWindow(window);
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

  std::shared_ptr<platform::Screen> host;
  std::vector<std::string> log;
};

TEST_F(ScreensTest, AnimatedPresentationRunsItsCompletionAfterTheTransitionOverTheContent) {
  auto recorder = std::make_shared<Recorder>(&log);
  auto child = newScreen(recorder);
  child->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
  bool presented = false;
  host->presentScreen(child, /*animated=*/true, [&] { presented = true; });

  EXPECT_FALSE(presented) << "never within the call";
  EXPECT_EQ(log, (std::vector<std::string>{"viewDidLoad", "viewWillAppear"}));
  EXPECT_EQ(host->presentedScreen(), child);
  EXPECT_EQ(child->presentingScreen(), host.get());
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

TEST_F(ScreensTest, PresenterHoldsTheScreenAndDelegateUntilTheDismissalCompletes) {
  auto recorder = std::make_shared<Recorder>(&log);
  auto child = newScreen(recorder);
  const std::weak_ptr<platform::Screen> weakChild = child;
  const std::weak_ptr<Recorder> weakRecorder = recorder;
  bool presented = false;
  host->presentScreen(child, /*animated=*/false, [&] { presented = true; });
  EXPECT_FALSE(presented);
  ASSERT_TRUE(runUntil([&] { return presented; }));
  child.reset();
  recorder.reset();
  ASSERT_FALSE(weakChild.expired()) << "the presenter must hold the presented screen";
  ASSERT_FALSE(weakRecorder.expired()) << "the presenter must hold the screen's delegate";

  std::vector<bool> releasedAtCompletion;
  for (const bool animated : {true, false}) {  // a second request joins the one under way
    host->dismiss(animated, [&] {
      releasedAtCompletion.push_back(weakChild.expired() && weakRecorder.expired());
    });
  }
  EXPECT_TRUE(releasedAtCompletion.empty());
  ASSERT_TRUE(runUntil([&] { return releasedAtCompletion.size() == 2; }));
  EXPECT_EQ(releasedAtCompletion, (std::vector<bool>{true, true}));
  EXPECT_EQ(host->presentedScreen(), nullptr);
  EXPECT_TRUE(GTK_IS_OVERLAY(gtk_window_get_child(window)));
  EXPECT_EQ(gtk_widget_get_first_child(gtk_window_get_child(window)),
            gtk_widget_get_last_child(gtk_window_get_child(window)))
      << "the presentation's widgets stay behind";
}

TEST_F(ScreensTest, OnlyOneChildAtATimeAndTheRefusedCompletionNeverRuns) {
  auto first = newScreen(std::make_shared<Recorder>(&log));
  auto second = ui->createScreen();
  int completions = 0;
  host->presentScreen(first, false, [&] { ++completions; });
  host->presentScreen(second, false, [&] { ++completions; });       // host already presents
  first->presentScreen(first, false, [&] { completions += 100; });  // itself
  auto other = ui->createScreen();
  other->presentScreen(first, false, [&] { completions += 100; });  // already presented
  runFor(milliseconds(400));
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(host->presentedScreen(), first);
  EXPECT_EQ(other->presentedScreen(), nullptr);
}

TEST_F(ScreensTest, DismissOfNothingCompletesOnALaterTurn) {
  auto lonely = ui->createScreen();
  bool done = false;
  lonely->dismiss(true, [&] { done = true; });
  EXPECT_FALSE(done);
  EXPECT_TRUE(runUntil([&] { return done; }, milliseconds(100)));
}

TEST_F(ScreensTest, DismissingFromBelowTakesEverythingAboveAndTheScreenCanComeBack) {
  auto middle = ui->createScreen();
  auto top = ui->createScreen();
  middle->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
  int presented = 0;
  host->presentScreen(middle, false, [&] { ++presented; });
  ASSERT_TRUE(runUntil([&] { return presented == 1; }));
  middle->presentScreen(top, false, [&] { ++presented; });
  ASSERT_TRUE(runUntil([&] { return presented == 2; }));

  bool dismissed = false;
  host->dismiss(true, [&] { dismissed = true; });
  ASSERT_TRUE(runUntil([&] { return dismissed; }));
  EXPECT_EQ(middle->presentingScreen(), nullptr);
  EXPECT_EQ(top->presentingScreen(), nullptr);
  EXPECT_EQ(middle->presentedScreen(), nullptr);

  // Its root view left the old presentation, so it can be presented again.
  host->presentScreen(top, true, [&] { ++presented; });
  ASSERT_TRUE(runUntil([&] { return presented == 3; }));
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
  }

  bool pressEscape() {
    if (gtkSheet->escapeController() == nullptr) {
      return false;  // no longer listening
    }
    gboolean handled = FALSE;
    g_signal_emit_by_name(gtkSheet->escapeController(), "key-pressed", GDK_KEY_Escape, 9U,
                          GdkModifierType{}, &handled);
    return handled == TRUE;
  }

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
  EXPECT_EQ(sheet->visibleScreen(), root);
  EXPECT_EQ(root->navigationContainer(), sheet.get());
}

TEST_F(SheetTest, EscapeDismissesTheSheetThenTellsThePresentationDelegate) {
  presentSheet();
  log.clear();
  const std::weak_ptr<platform::Screen> weakSheet = sheet;
  bool presentedAtNotice = true;
  ASSERT_TRUE(pressEscape());
  EXPECT_TRUE(log.empty()) << "told before the dismissal completed";
  ASSERT_TRUE(runUntil([&] { return !log.empty(); }));
  presentedAtNotice = host->presentedScreen() != nullptr;
  EXPECT_EQ(log, (std::vector<std::string>{"didDismiss"}));
  EXPECT_FALSE(presentedAtNotice);
  EXPECT_FALSE(pressEscape()) << "a dismissed sheet no longer takes Escape";
}

TEST_F(SheetTest, TheCoresOwnDismissalIsNeverReportedAndEscapeDuringItIsIgnored) {
  presentSheet();
  log.clear();
  bool dismissed = false;
  root->dismiss(true, [&] { dismissed = true; });  // the root dismisses its container
  EXPECT_FALSE(pressEscape());
  ASSERT_TRUE(runUntil([&] { return dismissed; }));
  runFor(milliseconds(50));
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(host->presentedScreen(), nullptr);
}

TEST_F(SheetTest, FullScreenAndCoveredSheetsIgnoreTheUsersDismissal) {
  presentSheet();
  auto cover = ui->createScreen();
  cover->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
  bool presented = false;
  sheet->presentScreen(cover, false, [&] { presented = true; });
  ASSERT_TRUE(runUntil([&] { return presented; }));
  EXPECT_FALSE(pressEscape()) << "the sheet is covered by another screen";
  EXPECT_FALSE(dynamic_cast<GtkScreen*>(cover.get())->userDismiss());
  EXPECT_EQ(host->presentedScreen(), sheet);
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
