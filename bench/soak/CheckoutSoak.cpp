#include "CheckoutSoak.h"

#include <gtk/gtk.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "LiveObjects.h"
#include "MainLoop.h"
#include "ProcessTree.h"
#include "ResidentMemory.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutWebView.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/linux/Screens.h"

namespace vemba::soak {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using tests::runMainLoopUntil;

constexpr auto kStepLimit = 30s;
constexpr auto kSettleLimit = 15s;       // for the last web process to end after the census
constexpr std::size_t kEarlyShare = 10;  // memory is compared with the sample after a tenth
constexpr std::string_view kCheckoutPath = "/checkout/soak-";
constexpr std::string_view kPurposeHeader = "Checkout-Purpose";
constexpr std::string_view kPrefetch = "prefetch";
constexpr int kWindowWidth = 900;
constexpr int kWindowHeight = 760;

struct Host final : checkout::CheckoutDelegate {
  explicit Host(std::thread::id main) : mainThread(main) {}
  void checkoutDidComplete(const checkout::CheckoutCompletedEvent& /*event*/) override {
    note("checkoutDidComplete");
  }
  void checkoutDidCancel() override { note("checkoutDidCancel"); }
  void checkoutDidFail(const checkout::CheckoutError& error) override {
    note("checkoutDidFail: " + error.toError().description);
  }
  void checkoutDidClickLink(const Url& /*url*/) override { note("checkoutDidClickLink"); }
  void checkoutDidEmitWebPixelEvent(const checkout::PixelEvent& /*event*/) override {
    ++pixels;
    if (std::this_thread::get_id() != mainThread) {
      note("a pixel off the main thread");
    }
  }
  void note(std::string what) {
    if (unexpected.empty()) {
      unexpected = std::move(what);
    }
  }

  std::thread::id mainThread;
  std::size_t pixels = 0;
  std::string unexpected;  // the first callback a cycle must not hear
};

class Cycles {
 public:
  Cycles(GtkWindow* window, const exchange::LocalExchange& exchange)
      : window_(window), exchange_(exchange), mainThread_(std::this_thread::get_id()) {}

  // One cycle; the reason when it went wrong, empty otherwise.
  std::string cycle(std::size_t index, bool preloaded) {
    const std::string path = std::string(kCheckoutPath) + std::to_string(index);
    const Url url = *Url::parse(exchange_.origin() + path);
    checkout::invalidate();
    if (preloaded) {
      checkout::preload(url);
      const std::shared_ptr<checkout::CheckoutWebView> cached =
          checkout::state().cache.cachedView();
      if (cached == nullptr) {
        return "the preload made no view";
      }
      if (!runMainLoopUntil(
              [&] { return cached->webView().url() && !cached->webView().isLoading(); },
              kStepLimit)) {
        return "the preload did not finish";
      }
    }
    const auto host = std::make_shared<Host>(mainThread_);
    const std::shared_ptr<checkout::CheckoutViewController> sheet =
        checkout::present(url, topScreenForWindow(window_), host);
    if (sheet == nullptr) {
      return "present() made no sheet";
    }
    if (!runMainLoopUntil([&] { return host->pixels > 0 || !host->unexpected.empty(); },
                          kStepLimit)) {
      return "the page sent no pixel";
    }
    bool dismissed = false;
    sheet->dismiss(/*animated=*/true, [&] { dismissed = true; });
    if (!runMainLoopUntil([&] { return dismissed; }, kStepLimit)) {
      return "the sheet was not dismissed";
    }
    if (!host->unexpected.empty()) {
      return "the host heard " + host->unexpected;
    }
    return checkRequests(path, preloaded);
  }

 private:
  // The page was asked for once: by the preload for a preloaded cycle, by present() otherwise.
  std::string checkRequests(const std::string& path, bool preloaded) const {
    std::size_t requests = 0;
    std::size_t prefetches = 0;
    for (const nlohmann::json& entry : exchange_.log("page")) {
      if (entry.value("path", "") == path) {
        ++requests;
        const auto purpose = exchange::LocalExchange::header(entry, kPurposeHeader);
        prefetches += purpose && *purpose == kPrefetch ? 1U : 0U;
      }
    }
    if (requests != 1 || prefetches != (preloaded ? 1U : 0U)) {
      return "the page was requested " + std::to_string(requests) + " times (" +
             std::to_string(prefetches) + " as a prefetch)";
    }
    return {};
  }

  GtkWindow* window_;
  const exchange::LocalExchange& exchange_;
  std::thread::id mainThread_;
};

}  // namespace

CheckoutSoakReport runCheckoutSoak(std::size_t cycles, const exchange::LocalExchange& exchange) {
  CheckoutSoakReport report;
  const Clock::time_point start = Clock::now();
  GtkWindow* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_default_size(window, kWindowWidth, kWindowHeight);
  gtk_window_set_child(window, gtk_label_new("Host window"));
  gtk_window_present(window);
  runMainLoopUntil([&] { return gtk_widget_get_mapped(GTK_WIDGET(window)) == TRUE; }, kStepLimit);
  // The window's root screen is the host's; it is made on first use, so before the count.
  const std::shared_ptr<ScreenHandle> root = screenForWindow(window);
  const std::size_t hostScreens = linux_platform::liveScreenCount();
  report.residentBeforeKib = residentKib();
  report.earlyCycle = std::max<std::size_t>(1, cycles / kEarlyShare);
  {
    Cycles runner(window, exchange);
    for (std::size_t index = 0; index < cycles; ++index) {
      const bool preloaded = index % 2 == 1;
      std::string failure = runner.cycle(index, preloaded);
      if (!failure.empty()) {
        ++report.failed;
        report.examples.push_back("cycle " + std::to_string(index) +
                                  (preloaded ? " (preloaded): " : " (cold): ") + failure);
        break;
      }
      ++report.cycles;
      report.preloaded += preloaded ? 1U : 0U;
      if (report.cycles == report.earlyCycle) {
        report.residentEarlyKib = residentKib();
        report.heapEarlyKib = mallinfo2().uordblks / 1024;
      }
    }
  }
  // Nothing kept for later: what is left now is left for good.
  checkout::invalidate();
  const pid_t self = getpid();
  const auto census = [&] {
    report.webViewsLeft = linux_platform::liveWebViewCount();
    const std::size_t screens = linux_platform::liveScreenCount();
    report.screensLeft = screens > hostScreens ? screens - hostScreens : 0;
    report.webProcessesLeft = tests::webProcessesOf(self);
    return report.webViewsLeft == 0 && report.screensLeft == 0 && report.webProcessesLeft == 0;
  };
  runMainLoopUntil(census, kSettleLimit);
  report.residentAfterKib = residentKib();
  report.heapAfterKib = mallinfo2().uordblks / 1024;
  gtk_window_destroy(window);
  runMainLoopUntil([] { return false; }, 200ms);
  report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  return report;
}

}  // namespace vemba::soak
