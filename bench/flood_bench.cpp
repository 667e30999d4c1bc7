// A page flooding its channel while the host animates, on the real Linux backend (GTK 4 +
// WebKitGTK), against the local exchange's flood pages (tools/exchange/pages/flood/flood.js):
// 1. the host window's frame times (p50, p99, max): the time between two runs of a tick callback
//    on its frame clock that animates a progress bar, while nothing is shown, while a quiet page
//    (one message a second) is shown, and while a page floods (RATE messages a second for SECONDS
//    seconds): once on the ad's "vemba" channel, once on the checkout's bridge channel; the ratios
//    of flood to quiet in the same run;
// 2. this process's resident memory and its web processes' before, at most during and after each
//    run;
// 3. what reached the host: the page numbers its valid events (on the ad channel an openURL whose
//    URL carries the number, or a "click"; on the checkout channel a pixel event "flood-<n>"),
//    mixes them with junk and huge bodies (up to 4 MiB), ends with its end marker ("close"; an
//    envelope that is not JSON) and then sends a few more valid events; the host checks the
//    sequence: lost, doubled, out of order, and delivered after the end marker;
// 4. beside the checkout runs, the same page in a bare WebKitWebView over the window, its messages
//    only counted: what WebKit alone costs the host.
// It prints figures only; nothing is asserted, and the exit status is 0 when every run finished.
//
// usage: vemba_flood_bench [RATE] [SECONDS] [both|ad|checkout]   (defaults 10000, 10 and both;
// needs a display, e.g. xvfb-run -a; the ad runs need the exchange origin of the build,
// 127.0.0.1:18443, to be free, the checkout runs alone take any free port; starts and stops its
// own local exchange; the web views' data and caches go to a temporary folder removed at the end)
#include <gtk/gtk.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "BenchSupport.h"
#include "LiveObjects.h"
#include "LocalExchange.h"
#include "MainLoop.h"
#include "ProcessTree.h"
#include "platform/Services.h"
#include "vemba/Vemba.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/linux/Screens.h"

namespace {

using namespace std::chrono_literals;
using vemba::bench::Clock;
using vemba::bench::Millis;
using vemba::bench::percentile;
using vemba::tests::runMainLoopFor;
using vemba::tests::runMainLoopUntil;

constexpr int kExchangePort = 18443;
constexpr const char* kAdUnit = "bench-flood-unit";
constexpr const char* kCheckoutChannel = "mobileCheckoutSdk";
// The quiet runs' rate: one message a second, the same page and the same code path.
constexpr int kQuietRate = 1;
// Mirrors flood.js's defaults that the bench does not pass: one valid event in two, a huge body
// every 1,000th message.
constexpr long kValidEvery = 2;
constexpr long kHugeEvery = 1000;
// Valid events the page sends after its end marker; none may reach the host.
constexpr long kTail = 50;
// The page starts after its load settles; frames are counted from its first message on.
constexpr int kPageDelayMs = 1000;
// How long the host keeps listening after the end marker (for events that come late).
constexpr auto kAfterEnd = 2s;
constexpr auto kSampleEvery = 200ms;
constexpr auto kStepDeadline = 30s;
// Marker of a "click" in the sequence of events seen by the host (numbers are never negative).
constexpr long kClick = -1;

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "flood_bench: %s\n", what);
    std::exit(1);
  }
}

// VmRSS of a process, in KiB.
long residentKiB(const std::string& process) {
  std::ifstream status("/proc/" + process + "/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) {
      return std::atol(line.c_str() + 6);
    }
  }
  return 0;
}

// CPU time (user and system) of a process or thread, by its /proc path, in seconds.
double cpuSeconds(const std::string& statPath) {
  std::ifstream in(statPath);
  std::string line;
  std::getline(in, line);
  std::istringstream rest(line.substr(line.rfind(')') + 2));
  std::string field;
  long ticks = 0;
  for (int i = 3; i <= 15 && rest >> field; ++i) {
    if (i == 14 || i == 15) {  // utime, stime
      ticks += std::atol(field.c_str());
    }
  }
  return static_cast<double>(ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double mainThreadCpuSeconds() {
  return cpuSeconds("/proc/self/task/" + std::to_string(getpid()) + "/stat");
}

// All web processes of this process (the same ones from start to end of a run).
double webCpuSeconds() {
  double seconds = 0;
  for (const pid_t pid : vemba::tests::webProcessIdsOf(getpid())) {
    seconds += cpuSeconds("/proc/" + std::to_string(pid) + "/stat");
  }
  return seconds;
}

struct Memory {
  long selfKiB = 0;
  long webKiB = 0;  // all web processes of this process
};

Memory memoryNow() {
  Memory memory{residentKiB("self"), 0};
  for (const pid_t pid : vemba::tests::webProcessIdsOf(getpid())) {
    memory.webKiB += residentKiB(std::to_string(pid));
  }
  return memory;
}

// The frame clock of the host window, read by a tick callback that also animates a progress bar
// (so that every frame has something to draw), and resident memory sampled on a timer.
class Meter {
 public:
  explicit Meter(GtkWidget* animated) : animated_(animated) {
    tick_ = gtk_widget_add_tick_callback(animated_, onTick, this, nullptr);
    sampler_ = g_timeout_add(static_cast<guint>(kSampleEvery.count()), onSample, this);
  }
  ~Meter() {
    gtk_widget_remove_tick_callback(animated_, tick_);
    g_source_remove(sampler_);
  }
  Meter(const Meter&) = delete;
  Meter& operator=(const Meter&) = delete;

  // Frames are counted from start() (the first interval runs from it, so a window that is
  // already stalled counts) to stop() (the last one runs to it).
  void start() {
    frames_.clear();
    last_ = g_get_monotonic_time();
    startedAt_ = Clock::now();
    startedCpu_ = mainThreadCpuSeconds();
    startedWebCpu_ = webCpuSeconds();
    peak_ = memoryNow();
    recording_ = true;
  }
  void stop() {
    frames_.push_back(static_cast<double>(g_get_monotonic_time() - last_) / 1000.0);
    recording_ = false;
    const double wall = std::chrono::duration<double>(Clock::now() - startedAt_).count();
    cpuShare_ = (mainThreadCpuSeconds() - startedCpu_) / wall;
    webCpuShare_ = (webCpuSeconds() - startedWebCpu_) / wall;
  }
  // The main thread's CPU time over the wall time between start() and stop().
  double cpuShare() const { return cpuShare_; }
  // The same for the web processes (of a machine with `nproc` cores: up to nproc).
  double webCpuShare() const { return webCpuShare_; }
  const std::vector<double>& frameMillis() const { return frames_; }
  const Memory& peak() const { return peak_; }

 private:
  static gboolean onTick(GtkWidget* widget, GdkFrameClock* /*clock*/, gpointer data) {
    auto* self = static_cast<Meter*>(data);
    // When the tick ran, not the clock's frame time: GTK smooths that towards whole refresh
    // intervals, which hides how late a frame came.
    const gint64 now = g_get_monotonic_time();
    if (self->recording_) {
      self->frames_.push_back(static_cast<double>(now - self->last_) / 1000.0);
      self->last_ = now;
    }
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(widget),
                                  static_cast<double>(now % 2'000'000) / 2'000'000.0);
    return G_SOURCE_CONTINUE;
  }
  static gboolean onSample(gpointer data) {
    auto* self = static_cast<Meter*>(data);
    if (self->recording_) {
      const Memory now = memoryNow();
      self->peak_.selfKiB = std::max(self->peak_.selfKiB, now.selfKiB);
      self->peak_.webKiB = std::max(self->peak_.webKiB, now.webKiB);
    }
    return G_SOURCE_CONTINUE;
  }

  GtkWidget* animated_;
  guint tick_ = 0;
  guint sampler_ = 0;
  bool recording_ = false;
  gint64 last_ = 0;
  std::vector<double> frames_;
  Memory peak_;
  Clock::time_point startedAt_;
  double startedCpu_ = 0;
  double cpuShare_ = 0;
  double startedWebCpu_ = 0;
  double webCpuShare_ = 0;
};

// How many valid events flood.js numbers in a run of `total` messages (the same rule as the page).
long validEventsIn(long total, bool withHuge) {
  long valid = 0;
  for (long i = 0; i < total; ++i) {
    const bool huge = withHuge && i % kHugeEvery == kHugeEvery - 1;
    valid += huge ? ((i / kHugeEvery) % 2 == 0 ? 1 : 0) : (i % kValidEvery == 0 ? 1 : 0);
  }
  return valid;
}

// What the host saw in one run.
struct Seen {
  std::vector<long> events;  // numbers, kClick for a click
  std::vector<Clock::time_point> at;
  int ends = 0;  // end markers: adDidDismiss, or checkoutDidFail
  int otherFailures = 0;
  std::optional<Clock::time_point> endAt;
  void add(long event) {
    events.push_back(event);
    at.push_back(Clock::now());
  }
};

// The sequence check: `expected` are the events before the end marker, `tail` those after it.
struct Verdict {
  long delivered = 0, lost = 0, doubled = 0, outOfOrder = 0, afterEnd = 0, foreign = 0;
};

Verdict judge(const Seen& seen, const std::vector<long>& expected, const std::vector<long>& tail) {
  Verdict verdict;
  verdict.delivered = static_cast<long>(seen.events.size());
  // Numbers are checked by value; clicks (all alike) by their count and places.
  std::vector<int> count(expected.size() + tail.size(), 0);
  long clicksExpected = 0;
  for (const long e : expected) {
    clicksExpected += e == kClick ? 1 : 0;
  }
  long clicks = 0;
  long lastNumber = -1;
  for (std::size_t i = 0; i < seen.events.size(); ++i) {
    const long e = seen.events[i];
    if (e == kClick) {
      ++clicks;
      continue;
    }
    if (e < 0 || static_cast<std::size_t>(e) >= count.size()) {
      ++verdict.foreign;
      continue;
    }
    if (++count[static_cast<std::size_t>(e)] > 1) {
      ++verdict.doubled;
    }
    if (e < lastNumber) {
      ++verdict.outOfOrder;
    }
    lastNumber = std::max(lastNumber, e);
  }
  for (std::size_t n = 0; n < expected.size(); ++n) {
    if (expected[n] != kClick && count[n] == 0) {
      ++verdict.lost;
    }
  }
  for (std::size_t n = expected.size(); n < count.size(); ++n) {
    verdict.afterEnd += count[n] > 0 ? 1 : 0;
  }
  // Clicks beyond those expected before the end are late ones (or doubles); missing ones lost.
  const long tailClicks = static_cast<long>(std::count(tail.begin(), tail.end(), kClick));
  verdict.lost += std::max(0L, clicksExpected - clicks);
  verdict.afterEnd += std::min(tailClicks, std::max(0L, clicks - clicksExpected));
  verdict.doubled += std::max(0L, clicks - clicksExpected - tailClicks);
  // Order of clicks against numbers: the exact sequence (when nothing is missing) must match.
  if (verdict.lost == 0 && verdict.doubled == 0 && verdict.afterEnd == 0 &&
      seen.events != expected) {
    ++verdict.outOfOrder;
  }
  return verdict;
}

class AdListener final : public vemba::VembaInterstitialAdDelegate {
 public:
  explicit AdListener(Seen& seen) : seen_(seen) {}
  bool loaded = false, failed = false, shown = false;
  void adDidLoad(vemba::VembaInterstitialAd&) override { loaded = true; }
  void adDidFailToLoad(vemba::VembaInterstitialAd&, const vemba::Error& error) override {
    std::fprintf(stderr, "load failed: %s\n", error.description.c_str());
    failed = true;
  }
  void adDidShow(vemba::VembaInterstitialAd&) override { shown = true; }
  void adDidDismiss(vemba::VembaInterstitialAd&) override {
    ++seen_.ends;
    seen_.endAt = Clock::now();
  }
  void adDidClick(vemba::VembaInterstitialAd&) override { seen_.add(kClick); }

 private:
  Seen& seen_;
};

class CheckoutListener final : public vemba::checkout::CheckoutDelegate {
 public:
  explicit CheckoutListener(Seen& seen) : seen_(seen) {}
  void checkoutDidCancel() override { ++seen_.otherFailures; }
  void checkoutDidFail(const vemba::checkout::CheckoutError& /*error*/) override {
    ++seen_.ends;
    seen_.endAt = Clock::now();
  }
  // The page would load again without its bridge: not what is measured.
  bool shouldRecoverFromError(const vemba::checkout::CheckoutError& /*error*/) override {
    return false;
  }
  void checkoutDidEmitWebPixelEvent(const vemba::checkout::PixelEvent& event) override {
    const std::optional<std::string>& id =
        std::visit([](const auto& e) -> const std::optional<std::string>& { return e.id; }, event);
    constexpr std::string_view kPrefix = "flood-";
    if (id && id->rfind(kPrefix, 0) == 0) {
      seen_.add(std::atol(id->c_str() + kPrefix.size()));
    } else {
      seen_.add(-2);  // foreign
    }
  }

 private:
  Seen& seen_;
};

// One line of results.
struct Row {
  std::string name;
  std::vector<double> frames;
  double cpuShare = 0, webCpuShare = 0;
  Memory before, peak, after;
  long messages = 0, expected = 0;
  std::optional<Verdict> verdict;
  double spanSeconds = 0;  // first to last valid event at the host
};

void printRow(const Row& row) {
  const auto& f = row.frames;
  std::printf("%-34s %4.0f%% %4.0f%% %6zu %7.1f %7.1f %7.1f  %5ld/%5ld/%5ld  %5ld/%5ld/%5ld",
              row.name.c_str(), 100 * row.cpuShare, 100 * row.webCpuShare, f.size(),
              f.empty() ? 0 : percentile(f, 0.5), f.empty() ? 0 : percentile(f, 0.99),
              f.empty() ? 0 : *std::max_element(f.begin(), f.end()), row.before.selfKiB / 1024,
              row.peak.selfKiB / 1024, row.after.selfKiB / 1024, row.before.webKiB / 1024,
              row.peak.webKiB / 1024, row.after.webKiB / 1024);
  if (row.verdict) {
    const Verdict& v = *row.verdict;
    std::printf("  %7ld %7ld %6ld %5ld %5ld %5ld %5ld %6.2f", row.messages, row.expected,
                v.delivered, v.lost, v.doubled, v.outOfOrder, v.afterEnd, row.spanSeconds);
  }
  std::printf("\n");
}

class Bench {
 public:
  Bench(GtkWindow* window, Meter& meter, vemba::exchange::LocalExchange& exchange, int seconds)
      : window_(window), meter_(meter), exchange_(exchange), seconds_(seconds) {}

  Row idle() {
    Row row;
    row.name = "nothing shown";
    row.before = memoryNow();
    meter_.start();
    runMainLoopFor(std::chrono::seconds(seconds_));
    meter_.stop();
    row.frames = meter_.frameMillis();
    row.cpuShare = meter_.cpuShare();
    row.webCpuShare = meter_.webCpuShare();
    row.peak = meter_.peak();
    row.after = memoryNow();
    return row;
  }

  // An interstitial whose page floods at `rate`; ends at adDidDismiss (the page's "close").
  Row ad(int rate, bool huge) {
    Seen seen;
    vemba::setUrlOpener([&](const std::string& url) {
      const std::size_t at = url.find("?n=");
      seen.add(at == std::string::npos ? -2 : std::atol(url.c_str() + at + 3));
    });
    exchange_.setBehaviour(kAdUnit, "bid", {{"page", "flood.html?" + query(rate, huge)}});
    auto listener = std::make_shared<AdListener>(seen);
    auto ad = vemba::VembaInterstitialAd::create(kAdUnit);
    ad->setDelegate(listener);
    ad->load();
    require(runMainLoopUntil([&] { return listener->loaded || listener->failed; }, kStepDeadline) &&
                listener->loaded,
            "the ad did not load");
    Row row = run("ad (vemba), " + rateName(rate, huge), rate, huge, seen,
                  [&] { ad->show(vemba::topScreenForWindow(window_)); });
    vemba::setUrlOpener({});
    ad.reset();
    settle();
    row.after = memoryNow();
    // Numbers for openURL (even), clicks for odd numbers.
    row.verdict = judge(seen, expectedEvents(row.expected, true), tailEvents(row.expected, true));
    return row;
  }

  // A checkout sheet whose page floods at `rate`; ends at checkoutDidFail (the page's envelope
  // that is not JSON).
  Row checkout(int rate, bool huge) {
    Seen seen;
    auto listener = std::make_shared<CheckoutListener>(seen);
    const auto url =
        vemba::Url::parse(exchange_.origin() + "/flood/checkout.html?" + query(rate, huge));
    require(url.has_value(), "bad checkout URL");
    std::shared_ptr<vemba::checkout::CheckoutViewController> sheet;
    Row row = run("checkout (bridge), " + rateName(rate, huge), rate, huge, seen, [&] {
      sheet = vemba::checkout::present(*url, vemba::topScreenForWindow(window_), listener);
      require(sheet != nullptr, "no checkout sheet");
    });
    sheet.reset();
    vemba::checkout::invalidate();
    settle();
    row.after = memoryNow();
    row.verdict = judge(seen, expectedEvents(row.expected, false), tailEvents(row.expected, false));
    if (seen.otherFailures > 0) {
      std::printf("  (%d cancellations)\n", seen.otherFailures);
    }
    return row;
  }

  // The same checkout page in a bare WebKitWebView over the window's content, its messages
  // received on the same channel and only counted: what WebKit alone costs the host. Run after a
  // sheet (the default session then trusts the exchange's certificate).
  Row bareCheckout(int rate, bool huge) {
    Seen seen;
    const std::string uri = exchange_.origin() + "/flood/checkout.html?" + query(rate, huge);
    WebKitWebView* view = vemba::bench::newBareView(nullptr, kCheckoutChannel);
    GtkWidget* overlay = gtk_window_get_child(window_);
    require(GTK_IS_OVERLAY(overlay), "the window has no overlay (present a sheet first)");
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), GTK_WIDGET(view));
    const gulong handler =
        g_signal_connect(webkit_web_view_get_user_content_manager(view),
                         (std::string("script-message-received::") + kCheckoutChannel).c_str(),
                         G_CALLBACK(+[](WebKitUserContentManager*, JSCValue* value, gpointer data) {
                           auto* counted = static_cast<Seen*>(data);
                           char* text = jsc_value_to_string(value);
                           if (std::string_view(text).find("\"name\"") == std::string_view::npos) {
                             ++counted->ends;  // the envelope that is not JSON
                             counted->endAt = Clock::now();
                           } else if (counted->ends == 0) {
                             counted->add(0);
                           }
                           g_free(text);
                         }),
                         &seen);
    Row row = run("bare view, checkout page, " + rateName(rate, huge), rate, huge, seen,
                  [&] { webkit_web_view_load_uri(view, uri.c_str()); });
    g_signal_handler_disconnect(webkit_web_view_get_user_content_manager(view), handler);
    gtk_overlay_remove_overlay(GTK_OVERLAY(overlay), GTK_WIDGET(view));
    webkit_web_view_terminate_web_process(view);
    g_object_unref(view);
    settle();
    row.after = memoryNow();
    return row;
  }

 private:
  std::string query(int rate, bool huge) const {
    return "rate=" + std::to_string(rate) + "&seconds=" + std::to_string(seconds_) +
           "&tail=" + std::to_string(kTail) + "&delay=" + std::to_string(kPageDelayMs) +
           (huge ? "" : "&huge=0");
  }
  static std::string rateName(int rate, bool huge) {
    return rate == kQuietRate
               ? "quiet (1/s)"
               : "flood" + std::string(huge ? "+huge" : "") + " (" + std::to_string(rate) + "/s)";
  }

  template <typename Show>
  Row run(std::string name, int rate, bool huge, Seen& seen, Show show) {
    Row row;
    row.name = std::move(name);
    row.messages = static_cast<long>(rate) * seconds_;
    row.expected = validEventsIn(row.messages, huge);
    row.before = memoryNow();
    show();
    // Frames count from the page's first message to its end marker.
    require(runMainLoopUntil([&] { return !seen.events.empty() || seen.ends > 0; }, kStepDeadline),
            "the page sent nothing");
    meter_.start();
    require(runMainLoopUntil([&] { return seen.ends > 0; },
                             std::chrono::seconds(seconds_) + 10 * kStepDeadline),
            "the page's end marker never came");
    meter_.stop();
    row.frames = meter_.frameMillis();
    row.cpuShare = meter_.cpuShare();
    row.webCpuShare = meter_.webCpuShare();
    row.peak = meter_.peak();
    runMainLoopFor(kAfterEnd);
    if (!seen.at.empty()) {
      row.spanSeconds = std::chrono::duration<double>(seen.at.back() - seen.at.front()).count();
    }
    return row;
  }

  static std::vector<long> expectedEvents(long count, bool adChannel) {
    std::vector<long> events;
    for (long n = 0; n < count; ++n) {
      events.push_back(adChannel && n % 2 == 1 ? kClick : n);
    }
    return events;
  }
  static std::vector<long> tailEvents(long from, bool adChannel) {
    std::vector<long> events;
    for (long n = from; n < from + kTail; ++n) {
      events.push_back(adChannel && n % 2 == 1 ? kClick : n);
    }
    return events;
  }

  void settle() {
    runMainLoopUntil(
        [] {
          return vemba::linux_platform::liveWebViewCount() == 0 &&
                 vemba::tests::webProcessesOf(getpid()) <= 1;
        },
        kStepDeadline);
    runMainLoopFor(1s);
  }

  GtkWindow* window_;
  Meter& meter_;
  vemba::exchange::LocalExchange& exchange_;
  int seconds_;
};

double ratio(const std::vector<double>& flood, const std::vector<double>& quiet, double p) {
  return p < 0 ? *std::max_element(flood.begin(), flood.end()) /
                     *std::max_element(quiet.begin(), quiet.end())
               : percentile(flood, p) / percentile(quiet, p);
}

}  // namespace

int main(int argc, char** argv) {
  const int rate = argc > 1 ? std::atoi(argv[1]) : 10000;
  const int seconds = argc > 2 ? std::atoi(argv[2]) : 10;
  const std::string runs = argc > 3 ? argv[3] : "both";
  const bool ads = runs != "checkout";
  const bool checkouts = runs != "ad";
  require(rate > kQuietRate && seconds > 0 && (ads || checkouts) &&
              (runs == "both" || runs == "ad" || runs == "checkout"),
          "usage: vemba_flood_bench [RATE] [SECONDS] [both|ad|checkout]");

  std::string home = (std::filesystem::temp_directory_path() / "vemba-flood-bench-XXXXXX").string();
  require(mkdtemp(home.data()) != nullptr, "no temporary folder");
  setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
  setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
  std::filesystem::create_directories(home + "/cache");
  setenv("GTK_A11Y", "none", 0);

  vemba::exchange::LocalExchange::Options options;
  options.port = ads ? kExchangePort : 0;
  options.lifetime = 1800s;
  vemba::exchange::LocalExchange exchange(options);
  setenv("SSL_CERT_FILE", exchange.caFile().c_str(), 1);
  vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration("bench-key", false));
  require(vemba::platform::ui() != nullptr, "no display (run under xvfb-run -a)");

  GtkWindow* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_default_size(window, 900, 760);
  GtkWidget* bar = gtk_progress_bar_new();
  gtk_widget_set_valign(bar, GTK_ALIGN_CENTER);
  gtk_window_set_child(window, bar);
  gtk_window_present(window);
  {
    Meter meter(bar);
    Bench bench(window, meter, exchange, seconds);
    runMainLoopFor(1s);
    std::vector<Row> rows;
    rows.push_back(bench.idle());
    if (ads) {
      rows.push_back(bench.ad(kQuietRate, false));
      rows.push_back(bench.ad(rate, false));
      rows.push_back(bench.ad(rate, true));
    }
    if (checkouts) {
      rows.push_back(bench.checkout(kQuietRate, false));
      rows.push_back(bench.checkout(rate, false));
      rows.push_back(bench.checkout(rate, true));
      rows.push_back(bench.bareCheckout(rate, false));
      rows.push_back(bench.bareCheckout(rate, true));
    }

    std::printf(
        "A host window animating while a page floods its channel: %d messages/s for %d s, one "
        "valid event in %ld (+huge: also a body of 4 KiB to 4 MiB every %ld messages)\n",
        rate, seconds, kValidEvery, kHugeEvery);
    std::printf("%-34s %5s %5s %6s %7s %7s %7s  %-17s  %-17s  %7s %7s %6s %5s %5s %5s %5s %6s\n",
                "", "main", "web", "frames", "p50 ms", "p99 ms", "max ms", "host MiB b/max/a",
                "web MiB b/max/a", "sent", "valid", "seen", "lost", "dup", "order", "late",
                "span s");
    for (const Row& row : rows) {
      printRow(row);
    }
    const auto printRatios = [](const Row& flood, const Row& quiet) {
      std::printf("%-34s / quiet: p50 %.2f  p99 %.2f  max %.2f\n", flood.name.c_str(),
                  ratio(flood.frames, quiet.frames, 0.5), ratio(flood.frames, quiet.frames, 0.99),
                  ratio(flood.frames, quiet.frames, -1));
    };
    const std::size_t checkoutQuiet = ads ? 4 : 1;
    if (ads) {
      printRatios(rows[2], rows[1]);
      printRatios(rows[3], rows[1]);
    }
    if (checkouts) {
      for (std::size_t k = 1; k <= 4; ++k) {
        printRatios(rows[checkoutQuiet + k], rows[checkoutQuiet]);
      }
    }
  }
  gtk_window_destroy(window);
  runMainLoopFor(1s);
  std::error_code ignored;
  std::filesystem::remove_all(home, ignored);
  return 0;
}
