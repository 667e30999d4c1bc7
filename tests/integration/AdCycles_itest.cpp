// Many show/close cycles of both ad formats in one process on the real Linux backend (GTK 4 +
// WebKitGTK under a virtual display), against the local exchange on the library's own origin:
// every cycle must give back its web view, its screen and its web process, and an ad loaded but
// not yet shown keeps exactly one web process running, which its show then uses.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "ExchangeTest.h"
#include "LiveObjects.h"
#include "MainLoop.h"
#include "ProcessTree.h"
#include "ads/core/VembaLogger.h"
#include "platform/Screen.h"
#include "platform/Services.h"
#include "platform/View.h"
#include "platform/WebView.h"
#include "ui/GtkViewBase.h"
#include "unit/ads/RecordingDelegate.h"
#include "vemba/Vemba.h"
#include "vemba/linux/Screens.h"

#if defined(VEMBA_CYCLES_UNDER_SANITIZERS)
// Under AddressSanitizer, leak checking is off: each run that starts GTK leaks a few bytes from a
// GL driver module unloaded before the check, which no suppression can name. What this test looks
// for is counted below instead.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "detect_leaks=0";
}
#endif

namespace vemba::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

constexpr std::size_t kCycles = 20;
constexpr auto kStepDeadline = 20s;    // one load, show, page load or dismissal
constexpr auto kSettleDeadline = 15s;  // everything released after the last cycle

bool has(const RecordingDelegate& delegate, const std::string& name) {
  const Strings names = delegate.names();
  return std::find(names.begin(), names.end(), name) != names.end();
}

// How a cycle closes its ad.
enum class CloseBy {
  buttonAtOnce,     // the close button as soon as the ad is on screen (page still loading)
  buttonAfterLoad,  // the close button once the page has loaded
  pageAfterLoad,    // the page's own "close" message once it has loaded
};

class AdCyclesTest : public ExchangeTest<18443> {  // the origin the library is built against
 protected:
  static void SetUpTestSuite() {
    if (!runnable()) {
      return;
    }
    setenv("GTK_A11Y", "none", 0);
#if defined(VEMBA_CYCLES_UNDER_SANITIZERS)
    // GSK draws with cairo: the GL driver is not instrumented (see tests/gui/CMakeLists.txt).
    setenv("GDK_DEBUG", "gl-disable", 0);
#endif
    // The ad views use the default network session, as a host's do: it trusts the exchange's
    // certificate once for all of them. What it stores goes to a folder of the test's own
    // (set before GLib first reads these variables).
    home_ = (std::filesystem::temp_directory_path() / "vemba-cycles-XXXXXX").string();
    if (mkdtemp(home_.data()) == nullptr) {
      return;
    }
    setenv("XDG_DATA_HOME", (home_ + "/data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (home_ + "/cache").c_str(), 1);
    ExchangeTest::SetUpTestSuite();
    VembaSDK::shared().initialize(VembaConfiguration("cycles-key", false));
  }
  static void TearDownTestSuite() {
    ExchangeTest::TearDownTestSuite();
    std::error_code ignored;
    std::filesystem::remove_all(home_, ignored);
  }

  void SetUp() override {
    ExchangeTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) {
      return;
    }
    ASSERT_NE(platform::ui(), nullptr);  // a display, but GTK did not start on it
    window_ = GTK_WINDOW(gtk_window_new());
    gtk_window_set_default_size(window_, 900, 760);
    gtk_window_set_child(window_, gtk_label_new("Host window"));
    gtk_window_present(window_);
    screen_ = screenForWindow(window_);
    // The library's own lines (page loads, failures, retries, messages), shown when a cycle fails.
    VembaLogger::setDevelopmentSink(
        [log = libraryLog_](std::string_view line) { log->emplace_back(line); });
  }
  void TearDown() override {
    VembaLogger::setDevelopmentSink(nullptr);
    if (HasFailure()) {
      for (const std::string& line : *libraryLog_) {
        std::fprintf(stderr, "library: %s\n", line.c_str());
      }
    }
    screen_.reset();
    if (window_ != nullptr) {
      gtk_window_destroy(window_);
    }
  }

  // The ad's screen and its views: the web view, then the close button above it.
  std::shared_ptr<platform::View> adSubview(std::size_t index) const {
    const std::shared_ptr<platform::Screen> ad = screen_->presentedScreen();
    if (!ad || !ad->isViewLoaded()) {
      return nullptr;
    }
    const auto subviews = ad->view().subviews();
    return index < subviews.size() ? subviews[index] : nullptr;
  }
  std::shared_ptr<platform::WebView> adWebView() const {
    return std::dynamic_pointer_cast<platform::WebView>(adSubview(0));
  }
  bool pageLoaded() const {
    const std::shared_ptr<platform::WebView> webView = adWebView();
    return webView && webView->url() && !webView->isLoading();
  }

  // One load, show and close of a new ad of type `Ad`; the trace of its host callbacks.
  template <typename Ad, typename Delegate>
  Strings cycle(std::size_t index, CloseBy closeBy) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    std::shared_ptr<Ad> ad = Ad::create("cycles-unit");
    ad->setDelegate(std::static_pointer_cast<Delegate>(delegate));
    ad->load();
    const bool loaded = runMainLoopUntil([&] { return !delegate->calls.empty(); }, kStepDeadline);
    if (!loaded || !has(*delegate, "adDidLoad")) {
      ADD_FAILURE() << "cycle " << index << ": no load";
      return delegate->names();
    }
    ad->show(screen_);
    if (!runMainLoopUntil([&] { return has(*delegate, "adDidShow"); }, kStepDeadline)) {
      ADD_FAILURE() << "cycle " << index << ": not shown";
      return delegate->names();
    }
    // While shown, the census sees exactly this ad's view and at least one web process: the
    // counts the end of the test relies on do count.
    EXPECT_EQ(linux_platform::liveWebViewCount(), 1U) << "cycle " << index;
    EXPECT_GE(webProcessesOf(getpid()), 1U) << "cycle " << index;

    if (closeBy != CloseBy::buttonAtOnce) {
      if (!runMainLoopUntil([&] { return pageLoaded(); }, kStepDeadline)) {
        const std::shared_ptr<platform::WebView> webView = adWebView();
        ADD_FAILURE() << "cycle " << index << ": the page did not load (url "
                      << (webView && webView->url() ? webView->url()->absoluteString() : "none")
                      << ", loading " << (webView && webView->isLoading()) << ", progress "
                      << (webView ? webView->estimatedProgress() : -1) << ")";
      }
    }
    if (closeBy == CloseBy::pageAfterLoad) {
      adWebView()->evaluateJavaScript("window.webkit.messageHandlers.vemba.postMessage('close');");
    } else if (const std::shared_ptr<platform::View> button = adSubview(1)) {
      gtk_widget_activate(linux_platform::gtkWidgetOf(*button));
    } else {
      ADD_FAILURE() << "cycle " << index << ": no close button";
    }
    EXPECT_TRUE(runMainLoopUntil([&] { return has(*delegate, "adDidDismiss"); }, kStepDeadline))
        << "cycle " << index << ": not dismissed";
    return delegate->names();
  }

  static inline std::string home_;
  GtkWindow* window_ = nullptr;
  std::shared_ptr<platform::Screen> screen_;
  std::shared_ptr<Strings> libraryLog_ = std::make_shared<Strings>();
};

TEST_F(AdCyclesTest, TwentyShowCloseCyclesLeaveNoWebViewScreenOrWebProcessBehind) {
  // The host window's own screen is the only one before the first cycle.
  const std::size_t screensBefore = linux_platform::liveScreenCount();
  ASSERT_EQ(linux_platform::liveWebViewCount(), 0U);

  const CloseBy closings[] = {CloseBy::buttonAtOnce, CloseBy::buttonAfterLoad,
                              CloseBy::pageAfterLoad};
  // One broken cycle says enough; the census below runs all the same.
  for (std::size_t i = 0; i < kCycles && !HasFailure(); ++i) {
    const CloseBy closeBy = closings[i % 3];
    if (i % 2 == 0) {
      EXPECT_EQ((cycle<VembaInterstitialAd, VembaInterstitialAdDelegate>(i, closeBy)),
                (Strings{"adDidLoad", "adDidShow", "adDidDismiss"}))
          << "cycle " << i;
    } else {
      EXPECT_EQ((cycle<VembaRewardedAd, VembaRewardedAdDelegate>(i, closeBy)),
                (Strings{"adDidLoad", "adDidShow", "adDidEarnReward(1,reward)", "adDidDismiss"}))
          << "cycle " << i;
    }
  }

  const bool allCyclesRan = !HasFailure();

  // Web processes end asynchronously: wait (bounded) for everything to be released. The census:
  // live web views, live screens, whether the ad is still presented, web processes.
  const auto census = [&] {
    return std::tuple(linux_platform::liveWebViewCount(), linux_platform::liveScreenCount(),
                      screen_->presentedScreen() != nullptr, webProcessesOf(getpid()));
  };
  const auto released = std::tuple(std::size_t{0}, screensBefore, false, std::size_t{0});
  runMainLoopUntil([&] { return census() == released; }, kSettleDeadline);
  EXPECT_EQ(census(), released);
  if (allCyclesRan) {
    EXPECT_EQ(exchange_->waitForLog("billing", kCycles, 5s).size(), std::size_t{kCycles});
  }
}

TEST_F(AdCyclesTest, AnAdWaitingToBeShownKeepsOneWebProcessWhichItsShowThenUses) {
  // Nothing left from earlier tests: no ad loaded, no web process.
  ASSERT_TRUE(runMainLoopUntil([] { return webProcessesOf(getpid()) == 0; }, kSettleDeadline));

  const auto delegate = std::make_shared<RecordingDelegate>();
  const std::shared_ptr<VembaInterstitialAd> ad = VembaInterstitialAd::create("cycles-unit");
  ad->setDelegate(std::static_pointer_cast<VembaInterstitialAdDelegate>(delegate));
  ad->load();
  ASSERT_TRUE(runMainLoopUntil([&] { return has(*delegate, "adDidLoad"); }, kStepDeadline));

  // Loaded and not shown: exactly one web process, running ahead of the show.
  ASSERT_TRUE(runMainLoopUntil([] { return webProcessesOf(getpid()) == 1; }, kStepDeadline));
  const std::vector<pid_t> warm = webProcessIdsOf(getpid());
  EXPECT_EQ(linux_platform::liveWebViewCount(), 0U);  // the core holds no web view yet
  // Readying it asked the network for nothing: only the bid so far.
  EXPECT_TRUE(exchange_->waitForLog("page", 1, 300ms).empty());
  EXPECT_TRUE(exchange_->log("other").empty());
  EXPECT_EQ(exchange_->log("bid").size(), 1U);

  // The show starts in that very process and starts no other.
  ad->show(screen_);
  ASSERT_TRUE(
      runMainLoopUntil([&] { return has(*delegate, "adDidShow") && pageLoaded(); }, kStepDeadline));
  EXPECT_EQ(webProcessIdsOf(getpid()), warm);
  EXPECT_FALSE(exchange_->log("page").empty());  // the census of requests above does count

  const std::shared_ptr<platform::View> button = adSubview(1);
  ASSERT_NE(button, nullptr);
  gtk_widget_activate(linux_platform::gtkWidgetOf(*button));
  ASSERT_TRUE(runMainLoopUntil([&] { return has(*delegate, "adDidDismiss"); }, kStepDeadline));
  EXPECT_EQ(delegate->names(), (Strings{"adDidLoad", "adDidShow", "adDidDismiss"}));

  // Closed, with no other ad loaded: the process ended with the ad's view.
  runMainLoopUntil([] { return webProcessesOf(getpid()) == 0; }, kSettleDeadline);
  EXPECT_EQ(webProcessesOf(getpid()), 0U);
  EXPECT_EQ(linux_platform::liveWebViewCount(), 0U);

  // A ready ad its host lets go of, unshown, takes its readied process with it.
  std::shared_ptr<VembaInterstitialAd> unshown = VembaInterstitialAd::create("cycles-unit");
  unshown->setDelegate(std::static_pointer_cast<VembaInterstitialAdDelegate>(delegate));
  unshown->load();
  ASSERT_TRUE(runMainLoopUntil([&] { return unshown->isReady(); }, kStepDeadline));
  ASSERT_TRUE(runMainLoopUntil([] { return webProcessesOf(getpid()) == 1; }, kStepDeadline));
  unshown.reset();
  EXPECT_TRUE(runMainLoopUntil([] { return webProcessesOf(getpid()) == 0; }, kSettleDeadline));
}

}  // namespace
}  // namespace vemba::testing
