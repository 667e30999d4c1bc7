// Showing an ad on the real Linux backend (GTK 4 + WebKitGTK), against the local exchange:
// 1. show() until the ad page has finished loading (the ad's web view starts in the web process the
//    library readied when the ad loaded), beside two bare WebKitGTK loads of the same page URL in a
//    new WebKitWebView in the same window: one that starts its own web process, and one that
//    shares a web process started ahead of time (untimed) as the library's is; interleaved, the
//    order rotating, in one run;
// 2. show() until adDidShow;
// 3. what an ad loaded and not yet shown costs: the VmRSS of its readied web process and of ours;
// 4. many show/close cycles: the process's resident memory after cycle 10 and after the last one,
//    and the web views and web processes left at the end.
// It prints medians and the ratios of one run; nothing is asserted.
//
// usage: vemba_ad_show_bench [PAIRS] [CYCLES]   (defaults 30 and 100; needs a display, e.g.
// xvfb-run -a, and the exchange origin of the build to be 127.0.0.1:18443; starts and stops its
// own local exchange; the web views' data and caches go to a temporary folder removed at the end)
#include <gtk/gtk.h>
#include <sys/types.h>
#include <unistd.h>
#include <webkit/webkit.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "LiveObjects.h"
#include "LocalExchange.h"
#include "MainLoop.h"
#include "ProcessTree.h"
#include "platform/Screen.h"
#include "platform/Services.h"
#include "platform/View.h"
#include "platform/WebView.h"
#include "ui/GtkViewBase.h"
#include "vemba/Vemba.h"
#include "vemba/linux/Screens.h"

namespace {

using vemba::bench::Clock;
using vemba::bench::LoadWatch;
using vemba::bench::median;
using vemba::bench::Millis;
using vemba::bench::newBareView;
using vemba::bench::printRow;

using namespace std::chrono_literals;
using vemba::tests::runMainLoopUntil;

constexpr int kExchangePort = 18443;
constexpr int kWarmupPairs = 3;
constexpr int kRssEarlyCycle = 10;
// How long after adDidLoad (and its web process appearing) the bench shows the ad; longer than a
// warm view takes to finish about:blank (printed as "warm view ready").
constexpr auto kShowAfterLoad = std::chrono::milliseconds(500);
// How long the bench lets a readied web process run before reading what it costs.
constexpr auto kWarmSettle = std::chrono::milliseconds(2000);
constexpr auto kStepDeadline = 30s;
constexpr auto kSettleDeadline = 15s;

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "ad_show_bench: %s\n", what);
    std::exit(1);
  }
}

// VmRSS of a process (this one by default), in KiB.
long residentKiB(const std::string& process = "self") {
  std::ifstream status("/proc/" + process + "/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) {
      return std::atol(line.c_str() + 6);
    }
  }
  return -1;
}

class Delegate final : public vemba::VembaInterstitialAdDelegate {
 public:
  bool loaded = false;
  bool failed = false;
  bool shown = false;
  bool dismissed = false;
  Clock::time_point shownAt;
  void adDidLoad(vemba::VembaInterstitialAd&) override { loaded = true; }
  void adDidFailToLoad(vemba::VembaInterstitialAd&, const vemba::Error& error) override {
    std::fprintf(stderr, "load failed: %s\n", error.description.c_str());
    failed = true;
  }
  void adDidShow(vemba::VembaInterstitialAd&) override {
    shownAt = Clock::now();
    shown = true;
  }
  void adDidDismiss(vemba::VembaInterstitialAd&) override { dismissed = true; }
  void adDidClick(vemba::VembaInterstitialAd&) override {}
};

// Milliseconds from the start (show(), or the bare view's creation) to each point.
struct Timing {
  double toCommitted = 0;  // the page's load committed
  double toLoaded = 0;     // the page's load finished
  double toShown = 0;      // adDidShow (shows only)
  double inShow = 0;       // the show() call itself (shows only)
};

class Bench {
 public:
  Bench(GtkWindow* window, std::string pageUri)
      : window_(window),
        screen_(vemba::platform::Screen::of(vemba::screenForWindow(window))),
        pageUri_(std::move(pageUri)) {}

  // One interstitial loaded, shown from the window until its page has loaded and adDidShow has
  // come (timed from show()), then closed with its close button until adDidDismiss.
  Timing showAndClose() {
    auto delegate = std::make_shared<Delegate>();
    const std::shared_ptr<vemba::VembaInterstitialAd> ad = load(delegate);
    // A host shows an ad some time after it loaded: by then the web process readied for it runs.
    require(
        runMainLoopUntil([] { return vemba::tests::webProcessesOf(getpid()) == 1; }, kStepDeadline),
        "no web process readied for the loaded ad");
    runMainLoopUntil([] { return false; }, kShowAfterLoad);

    const Clock::time_point start = Clock::now();
    ad->show(screen_);
    const Clock::time_point returned = Clock::now();
    // The ad's screen loads its view, and so starts the page load, inside show().
    const std::shared_ptr<vemba::platform::View> webView = adSubview(0);
    require(webView != nullptr, "the ad's screen has no web view");
    LoadWatch watch(WEBKIT_WEB_VIEW(vemba::linux_platform::gtkWidgetOf(*webView)), pageUri_);
    require(runMainLoopUntil([&] { return watch.finished() && delegate->shown; }, kStepDeadline),
            "the ad page did not load");
    const Timing timing{
        Millis(watch.committedAt() - start).count(), Millis(watch.at() - start).count(),
        Millis(delegate->shownAt - start).count(), Millis(returned - start).count()};

    const std::shared_ptr<vemba::platform::View> button = adSubview(1);
    require(button != nullptr, "the ad's screen has no close button");
    gtk_widget_activate(vemba::linux_platform::gtkWidgetOf(*button));
    require(runMainLoopUntil([&] { return delegate->dismissed; }, kStepDeadline), "not dismissed");
    return timing;
  }

  // The same page in a new WebKitWebView over the window's content, with what the ad's view
  // sets that touches loading (the default network session, inline media, a content manager
  // with the "vemba" channel, a request that skips the local cache), timed from the view's
  // creation to its load finished. The view and its web process are gone when this returns.
  Timing bareLoad() { return bareLoad(nullptr); }

  // The same, but the new view shares the web process of `related` (already running) instead of
  // starting one: what a process kept warm ahead of time would give a show. The shared process
  // stays when the view goes.
  Timing bareLoad(WebKitWebView* related) {
    const Clock::time_point start = Clock::now();
    WebKitWebView* view = newBareView(related, "vemba");
    GtkWidget* overlay = gtk_window_get_child(window_);
    require(GTK_IS_OVERLAY(overlay), "the window has no overlay (show an ad first)");
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), GTK_WIDGET(view));

    Timing timing;
    {
      LoadWatch watch(view, pageUri_);
      WebKitURIRequest* request = webkit_uri_request_new(pageUri_.c_str());
      SoupMessageHeaders* headers = webkit_uri_request_get_http_headers(request);
      soup_message_headers_replace(headers, "Cache-Control", "no-cache");
      soup_message_headers_replace(headers, "Pragma", "no-cache");
      webkit_web_view_load_request(view, request);
      g_object_unref(request);
      require(runMainLoopUntil([&] { return watch.finished(); }, kStepDeadline),
              "bare load failed");
      timing.toCommitted = Millis(watch.committedAt() - start).count();
      timing.toLoaded = Millis(watch.at() - start).count();
    }
    gtk_overlay_remove_overlay(GTK_OVERLAY(overlay), GTK_WIDGET(view));
    if (related == nullptr) {
      webkit_web_view_terminate_web_process(view);
    }
    g_object_unref(view);
    return timing;
  }

  // A view that is never shown, with its web process started (about:blank loaded, as the
  // library's own warm view does).
  WebKitWebView* warmView() {
    const Clock::time_point start = Clock::now();
    WebKitWebView* view = newBareView(nullptr, "vemba");
    bool loaded = false;
    const gulong handler = g_signal_connect(
        view, "load-changed", G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, gpointer flag) {
          *static_cast<bool*>(flag) = *static_cast<bool*>(flag) || event == WEBKIT_LOAD_FINISHED;
        }),
        &loaded);
    webkit_web_view_load_uri(view, "about:blank");
    require(runMainLoopUntil([&] { return loaded; }, kStepDeadline), "the warm view did not load");
    warmReady_.push_back(Millis(Clock::now() - start).count());
    g_signal_handler_disconnect(view, handler);
    return view;
  }

  // A bare load in a new view that shares a web process started ahead of time (untimed); the
  // process is ended afterwards, as the library ends the one its ad view used.
  Timing warmBareLoad() {
    WebKitWebView* warm = warmView();
    const Timing timing = bareLoad(warm);
    webkit_web_view_terminate_web_process(warm);
    g_object_unref(warm);
    return timing;
  }

  // An interstitial loaded and left unshown: the library keeps a web process ready for it.
  std::shared_ptr<vemba::VembaInterstitialAd> loadOnly() {
    const std::shared_ptr<vemba::VembaInterstitialAd> ad = load(std::make_shared<Delegate>());
    ad->setDelegate({});
    return ad;
  }

  // A new interstitial, loaded (the run stops when it fails), telling `delegate`.
  static std::shared_ptr<vemba::VembaInterstitialAd> load(
      const std::shared_ptr<Delegate>& delegate) {
    auto ad = vemba::VembaInterstitialAd::create("bench-show-unit");
    ad->setDelegate(delegate);
    ad->load();
    require(runMainLoopUntil([&] { return delegate->loaded || delegate->failed; }, kStepDeadline) &&
                delegate->loaded,
            "the ad did not load");
    return ad;
  }

  // Lets everything released by the last dismissal go (web processes end asynchronously).
  // Counts the waits that ran out.
  void settle(std::size_t webProcessesKept = 0) {
    const bool settled = runMainLoopUntil(
        [webProcessesKept] {
          return vemba::linux_platform::liveWebViewCount() == 0 &&
                 vemba::tests::webProcessesOf(getpid()) == webProcessesKept;
        },
        kSettleDeadline);
    unsettled_ += settled ? 0 : 1;
  }
  int unsettled() const { return unsettled_; }
  // How long each warm view took from creation to about:blank finished.
  const std::vector<double>& warmReady() const { return warmReady_; }

 private:
  std::shared_ptr<vemba::platform::View> adSubview(std::size_t index) const {
    const std::shared_ptr<vemba::platform::Screen> ad = screen_->presentedScreen();
    if (!ad || !ad->isViewLoaded()) {
      return nullptr;
    }
    const auto subviews = ad->view().subviews();
    return index < subviews.size() ? subviews[index] : nullptr;
  }

  GtkWindow* window_;
  std::shared_ptr<vemba::platform::Screen> screen_;
  std::string pageUri_;
  int unsettled_ = 0;
  std::vector<double> warmReady_;
};

}  // namespace

int main(int argc, char** argv) {
  const int pairs = argc > 1 ? std::atoi(argv[1]) : 30;
  const int cycles = argc > 2 ? std::atoi(argv[2]) : 100;
  require(pairs > 0 && cycles > kRssEarlyCycle, "usage: vemba_ad_show_bench [PAIRS] [CYCLES>10]");

  // The default network session keeps cookies and caches under these: a folder of our own.
  std::string home = (std::filesystem::temp_directory_path() / "vemba-show-bench-XXXXXX").string();
  require(mkdtemp(home.data()) != nullptr, "no temporary folder");
  setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
  setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
  setenv("GTK_A11Y", "none", 0);
  for (const char* name :
       {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"}) {
    unsetenv(name);
  }

  vemba::exchange::LocalExchange::Options options;
  options.port = kExchangePort;
  options.lifetime = 1800s;
  vemba::exchange::LocalExchange exchange(options);
  setenv("SSL_CERT_FILE", exchange.caFile().c_str(), 1);
  require(vemba::platform::ui() != nullptr, "no display (run under xvfb-run -a)");
  vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration("bench-key", false));

  GtkWindow* window = vemba::bench::newHostWindow();
  {
    Bench bench(window, exchange.origin() + "/ads/interstitial.html");

    // Warm-up: the first show also trusts the exchange's certificate in the default session,
    // which the bare views share.
    for (int i = 0; i < kWarmupPairs; ++i) {
      bench.showAndClose();
      bench.settle();
      bench.bareLoad();
      bench.settle();
    }

    std::vector<double> library;
    std::vector<double> libraryCommitted;
    std::vector<double> shown;
    std::vector<double> inShow;
    std::vector<double> bare;
    std::vector<double> bareCommitted;
    std::vector<double> warmBare;
    std::vector<double> warmBareCommitted;
    const std::function<void()> steps[] = {
        [&] {
          const Timing timing = bench.showAndClose();
          library.push_back(timing.toLoaded);
          libraryCommitted.push_back(timing.toCommitted);
          shown.push_back(timing.toShown);
          inShow.push_back(timing.inShow);
          bench.settle();
        },
        [&] {
          const Timing timing = bench.bareLoad();
          bare.push_back(timing.toLoaded);
          bareCommitted.push_back(timing.toCommitted);
          bench.settle();
        },
        [&] {
          const Timing timing = bench.warmBareLoad();
          warmBare.push_back(timing.toLoaded);
          warmBareCommitted.push_back(timing.toCommitted);
          bench.settle();
        },
    };
    for (int i = 0; i < pairs; ++i) {
      // Rotate the order so that none always follows another.
      for (int k = 0; k < 3; ++k) {
        steps[(i + k) % 3]();
      }
    }
    std::printf("show() vs bare WebKitWebView loads of the same page, %d rounds\n", pairs);
    std::printf("%-38s %9s %9s %9s\n", "", "median ms", "p10 ms", "p90 ms");
    printRow("show() -> ad page loaded", library);
    printRow("bare new view -> page loaded", bare);
    printRow("bare view, warm process -> loaded", warmBare);
    printRow("show() -> ad page committed", libraryCommitted);
    printRow("bare new view -> page committed", bareCommitted);
    printRow("bare view, warm process -> committed", warmBareCommitted);
    printRow("show() -> adDidShow", shown);
    printRow("the show() call itself", inShow);
    printRow("warm view ready (untimed above)", bench.warmReady());
    std::printf("ratio of medians (show -> loaded / bare, own process): %.3f (target <= 1.10)\n",
                median(library) / median(bare));
    std::printf("ratio of medians (show -> loaded / bare, warm process): %.3f\n",
                median(library) / median(warmBare));

    // An ad loaded and not shown: what the web process readied for it costs.
    const long uiBeforeLoad = residentKiB();
    {
      const std::shared_ptr<vemba::VembaInterstitialAd> waiting = bench.loadOnly();
      bench.settle(1);
      // Read once the process has started and loaded its blank page, not while it is starting.
      runMainLoopUntil([] { return false; }, kWarmSettle);
      long warmProcessKiB = 0;
      for (const pid_t pid : vemba::tests::webProcessIdsOf(getpid())) {
        warmProcessKiB += residentKiB(std::to_string(pid));
      }
      std::printf(
          "an ad waiting to be shown: %zu web process(es), VmRSS %ld KiB; this process %+ld KiB\n",
          vemba::tests::webProcessesOf(getpid()), warmProcessKiB, residentKiB() - uiBeforeLoad);
    }
    // The unshown ad is gone, but its readied web process is kept for the next ad's view, which
    // the first cycle below makes.

    long rssEarly = 0;
    for (int i = 1; i <= cycles; ++i) {
      bench.showAndClose();
      if (i == kRssEarlyCycle || i == cycles) {
        bench.settle();
      }
      if (i == kRssEarlyCycle) {
        rssEarly = residentKiB();
      }
    }
    bench.settle();
    const long rssLate = residentKiB();
    std::printf(
        "%d show/close cycles: VmRSS after cycle %d %ld KiB, after cycle %d %ld KiB "
        "(%+.1f %%, target within 10 %%)\n",
        cycles, kRssEarlyCycle, rssEarly, cycles, rssLate,
        100.0 * static_cast<double>(rssLate - rssEarly) / static_cast<double>(rssEarly));
    std::printf(
        "at the end: %zu web views alive, %zu screens alive (the window's own is one), "
        "%zu web processes\n",
        vemba::linux_platform::liveWebViewCount(), vemba::linux_platform::liveScreenCount(),
        vemba::tests::webProcessesOf(getpid()));
    std::printf("waits for views and web processes to go that ran out: %d\n", bench.unsettled());
  }
  gtk_window_destroy(window);
  std::error_code ignored;
  std::filesystem::remove_all(home, ignored);
  return 0;
}
