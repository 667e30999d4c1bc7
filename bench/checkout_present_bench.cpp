// Presenting a checkout on the real Linux backend (GTK 4 + WebKitGTK), against the local
// exchange's demo checkout page, side by side in one run:
// 1. a cold present() (nothing preloaded) until the page has finished loading in the sheet,
//    beside a bare WebKitGTK load of the same URL in a new WebKitWebView over the window's content,
//    and beside the same present() without its 0.25 s fade (what the transition's drawing costs
//    the load); interleaved, the order rotating;
// 2. a preloaded present: when the presentation has finished (its transition has ended), and
//    when the page received "presented", on the page's own high-resolution wall clock
//    (performance.timeOrigin + performance.now()) against this process's wall clock;
// 3. present() until the first frame that shows the page: the first "after-paint" of the
//    window's frame clock at which the sheet's page has committed and the sheet is drawn (its
//    presentation no longer fully transparent).
// It prints medians (p10, p90) and the ratio of one run; nothing is asserted.
//
// usage: vemba_checkout_present_bench [ROUNDS]   (default 20; needs a display, e.g. xvfb-run -a;
// starts and stops its own local exchange on a free port; the web views' data and caches go to a
// temporary folder removed at the end)
#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "LocalExchange.h"
#include "MainLoop.h"
#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/sheet/CheckoutWebViewController.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutWebView.h"
#include "platform/Services.h"
#include "ui/GtkScreen.h"
#include "ui/GtkViewBase.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/linux/Screens.h"

namespace {

using namespace std::chrono_literals;
using vemba::bench::Clock;
using vemba::bench::LoadWatch;
using vemba::bench::median;
using vemba::bench::Millis;
using vemba::bench::printRow;
using vemba::tests::runMainLoopUntil;
namespace checkout = vemba::checkout;

constexpr int kWarmupRounds = 2;
constexpr auto kStepDeadline = 30s;

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "checkout_present_bench: %s\n", what);
    std::exit(1);
  }
}

double wallMillisNow() {
  return Millis(std::chrono::system_clock::now().time_since_epoch()).count();
}

struct Host final : checkout::CheckoutDelegate {
  void checkoutDidCancel() override {}
  void checkoutDidFail(const checkout::CheckoutError& /*error*/) override { failed = true; }
  bool failed = false;
};

// The first frame of `window` at which `visible()` holds, in this process's steady clock.
class FirstFrame {
 public:
  FirstFrame(GtkWindow* window, std::function<bool()> visible)
      : clock_(gtk_widget_get_frame_clock(GTK_WIDGET(window))), visible_(std::move(visible)) {
    handler_ = g_signal_connect(clock_, "after-paint", G_CALLBACK(onPaint), this);
  }
  ~FirstFrame() { g_signal_handler_disconnect(clock_, handler_); }
  FirstFrame(const FirstFrame&) = delete;
  FirstFrame& operator=(const FirstFrame&) = delete;

  bool seen() const { return seen_; }
  Clock::time_point at() const { return at_; }

 private:
  static void onPaint(GdkFrameClock* /*clock*/, gpointer data) {
    auto* self = static_cast<FirstFrame*>(data);
    if (!self->seen_ && self->visible_()) {
      self->seen_ = true;
      self->at_ = Clock::now();
    }
  }

  GdkFrameClock* clock_;
  std::function<bool()> visible_;
  gulong handler_ = 0;
  bool seen_ = false;
  Clock::time_point at_;
};

// Milliseconds from present() to each point; the page time is on the wall clock, relative to the
// presentation's end.
struct Timing {
  double toLoaded = 0;
  double toFirstFrame = 0;
  double toPresentationEnd = 0;
  double presentedAfterEnd = 0;  // preloaded only: page received "presented" minus the end
};

class Bench {
 public:
  Bench(GtkWindow* window, std::string url)
      : window_(window), url_(*vemba::Url::parse(url)), uri_(std::move(url)) {}

  // present(), as the host calls it, with a completion at the end of the presentation (the same
  // steps present() takes); the page's load watched from the start.
  Timing present(bool preloaded, bool animated = true) {
    checkout::invalidate();  // nothing cached, and the client's preload flag cleared
    if (preloaded) {
      checkout::preload(url_);
      const std::shared_ptr<checkout::CheckoutWebView> cached =
          checkout::state().cache.cachedView();
      require(cached != nullptr, "the preload made no view");
      require(runMainLoopUntil(
                  [&] { return cached->webView().url() && !cached->webView().isLoading(); },
                  kStepDeadline),
              "the preload did not finish");
    }
    Timing timing;
    const auto host = std::make_shared<Host>();
    const Clock::time_point start = Clock::now();
    const std::shared_ptr<checkout::CheckoutViewControllerImpl> sheet =
        checkout::CheckoutViewControllerImpl::create(*vemba::platform::ui(), url_, host);
    require(sheet != nullptr, "no sheet");
    WebKitWebView* page = pageOf(*sheet);
    LoadWatch watch(page, uri_);
    auto* presentation = dynamic_cast<vemba::linux_platform::GtkScreen*>(sheet->screen().get());
    FirstFrame frame(window_, [&] {
      GtkWidget* shown = presentation->presentationWidget();
      return (preloaded || watch.committed()) && shown != nullptr &&
             gtk_widget_get_opacity(shown) > 0.0;
    });
    bool ended = false;
    double endedWall = 0;
    vemba::platform::Screen::of(vemba::topScreenForWindow(window_))
        ->presentScreen(vemba::platform::Screen::of(sheet->screen()), animated, [&] {
          ended = true;
          endedWall = wallMillisNow();
          timing.toPresentationEnd = Millis(Clock::now() - start).count();
        });
    require(
        runMainLoopUntil([&] { return ended && frame.seen() && (preloaded || watch.finished()); },
                         kStepDeadline),
        "the sheet did not show its page");
    require(!host->failed, "the checkout failed");
    timing.toFirstFrame = Millis(frame.at() - start).count();
    timing.toLoaded = preloaded ? 0 : Millis(watch.at() - start).count();
    if (preloaded) {
      timing.presentedAfterEnd = pagePresentedAt(page) - endedWall;
    }
    bool dismissed = false;
    sheet->dismiss(/*animated=*/false, [&] { dismissed = true; });
    require(runMainLoopUntil([&] { return dismissed; }, kStepDeadline), "not dismissed");
    return timing;
  }

  // The same page in a new WebKitWebView over the window's content, from its creation to its load
  // finished; the view and its web process are gone when this returns.
  double bareLoad() {
    const Clock::time_point start = Clock::now();
    WebKitWebView* view = vemba::bench::newBareView(nullptr, "mobileCheckoutSdk");
    GtkWidget* overlay = gtk_window_get_child(window_);
    require(GTK_IS_OVERLAY(overlay), "the window has no overlay (present a sheet first)");
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), GTK_WIDGET(view));
    double loaded = 0;
    {
      LoadWatch watch(view, uri_);
      webkit_web_view_load_uri(view, uri_.c_str());
      require(runMainLoopUntil([&] { return watch.finished(); }, kStepDeadline),
              "bare load failed");
      loaded = Millis(watch.at() - start).count();
    }
    gtk_overlay_remove_overlay(GTK_OVERLAY(overlay), GTK_WIDGET(view));
    webkit_web_view_terminate_web_process(view);
    g_object_unref(view);
    return loaded;
  }

 private:
  static WebKitWebView* pageOf(const checkout::CheckoutViewControllerImpl& sheet) {
    const auto page =
        std::dynamic_pointer_cast<checkout::CheckoutWebViewController>(sheet.childControllers()[0]);
    return WEBKIT_WEB_VIEW(vemba::linux_platform::gtkWidgetOf(page->checkoutView()->webView()));
  }

  // When the page received "presented", on the page's wall clock (ms since the epoch).
  static double pagePresentedAt(WebKitWebView* page) {
    double at = -1;
    bool done = false;
    struct Result {
      double* at;
      bool* done;
    } result{&at, &done};
    const char* script =
        "(window.VembaSite.received.find(m => m.name === 'presented') || {at: -1}).at";
    webkit_web_view_evaluate_javascript(
        page, script, -1, nullptr, nullptr, nullptr,
        +[](GObject* view, GAsyncResult* async, gpointer data) {
          auto* out = static_cast<Result*>(data);
          if (JSCValue* value = webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view),
                                                                           async, nullptr)) {
            *out->at = jsc_value_to_double(value);
            g_object_unref(value);
          }
          *out->done = true;
        },
        &result);
    require(runMainLoopUntil([&] { return done; }, kStepDeadline) && at > 0,
            "the page did not receive \"presented\"");
    return at;
  }

  GtkWindow* window_;
  vemba::Url url_;
  std::string uri_;
};

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 20;
  require(rounds > 0, "usage: vemba_checkout_present_bench [ROUNDS]");

  // The default network session keeps cookies and caches under these: a folder of our own.
  std::string home =
      (std::filesystem::temp_directory_path() / "vemba-checkout-bench-XXXXXX").string();
  require(mkdtemp(home.data()) != nullptr, "no temporary folder");
  setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
  setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
  std::filesystem::create_directories(home + "/cache");
  setenv("GTK_A11Y", "none", 0);

  vemba::exchange::LocalExchange::Options options;
  options.port = 0;
  options.lifetime = 1800s;
  vemba::exchange::LocalExchange exchange(options);
  setenv("SSL_CERT_FILE", exchange.caFile().c_str(), 1);
  require(vemba::platform::ui() != nullptr, "no display (run under xvfb-run -a)");

  GtkWindow* window = vemba::bench::newHostWindow();
  {
    Bench bench(window, exchange.origin() + "/checkout/bench");
    // Warm-up: the first sheet also trusts the exchange's certificate in the default session,
    // which the bare views share.
    for (int i = 0; i < kWarmupRounds; ++i) {
      bench.present(false);
      bench.bareLoad();
      bench.present(true);
    }
    std::vector<double> cold, bare, still, coldFrame, preloadedFrame, presentationEnd,
        presentedAfterEnd;
    const std::function<void()> steps[] = {
        [&] {
          const Timing timing = bench.present(false);
          cold.push_back(timing.toLoaded);
          coldFrame.push_back(timing.toFirstFrame);
        },
        [&] { bare.push_back(bench.bareLoad()); },
        [&] { still.push_back(bench.present(false, /*animated=*/false).toLoaded); },
        [&] {
          const Timing timing = bench.present(true);
          preloadedFrame.push_back(timing.toFirstFrame);
          presentationEnd.push_back(timing.toPresentationEnd);
          presentedAfterEnd.push_back(timing.presentedAfterEnd);
        },
    };
    constexpr int kSteps = static_cast<int>(std::size(steps));
    for (int i = 0; i < rounds; ++i) {
      for (int k = 0; k < kSteps; ++k) {  // rotate the order so that none always follows another
        steps[(i + k) % kSteps]();
      }
    }
    std::printf("present() vs a bare WebKitWebView load of the same checkout page, %d rounds\n",
                rounds);
    std::printf("%-44s %9s %9s %9s\n", "", "median ms", "p10 ms", "p90 ms");
    printRow("cold present() -> page loaded", cold);
    printRow("bare new view -> page loaded", bare);
    printRow("cold present(), no fade -> page loaded", still);
    printRow("cold present() -> first frame with the page", coldFrame);
    printRow("preloaded present() -> first frame", preloadedFrame);
    printRow("preloaded present() -> presentation ended", presentationEnd);
    printRow("\"presented\" at the page - presentation end", presentedAfterEnd);
    std::printf("ratio of medians (cold present -> loaded / bare): %.3f (target <= 1.10)\n",
                median(cold) / median(bare));
    std::printf("ratio of medians (cold present without its fade -> loaded / bare): %.3f\n",
                median(still) / median(bare));
    std::printf(
        "\"presented\" reaches the page %.1f ms %s the presentation ends (target: within "
        "16.7 ms)\n",
        std::abs(median(presentedAfterEnd)), median(presentedAfterEnd) < 0 ? "before" : "after");
  }
  gtk_window_destroy(window);
  runMainLoopUntil([] { return false; }, 1s);  // the last web processes end before their folder
  std::error_code ignored;
  std::filesystem::remove_all(home, ignored);
  return 0;
}
