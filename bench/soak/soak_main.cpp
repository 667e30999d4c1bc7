// The soak: many ad loads under injected faults, then present/close cycles of the checkout sheet,
// on the real Linux backend against the local exchange of the build's origin (127.0.0.1:18443).
// It prints its figures and exits 1 when any guarantee fails (2 on a usage error):
// - every kept ad heard exactly one callback, of the class its fault calls for; no released ad
//   heard anything; every callback ran on the main thread; no show, dismiss, click or reward
//   reached an ad that was never shown;
// - resident memory is flat over the loads: sampled with nothing in flight and after
//   malloc_trim(0), the last sample exceeds the first (after a fifth of the loads) by at most the
//   load tolerance;
// - after the checkout cycles no web view, no screen of the library and no web process is left,
//   and resident memory is within the checkout tolerance of the sample after the first tenth.
//
// usage: vemba_soak [--loads N] [--in-flight N] [--checkout-cycles N]
//                   [--load-tolerance PERCENT] [--checkout-tolerance PERCENT]
// Needs a display (xvfb-run -a) and the port 18443 free; starts and stops its own exchange.
#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "CheckoutSoak.h"
#include "LoadSoak.h"
#include "LocalExchange.h"
#include "ResidentMemory.h"
#include "platform/Services.h"
#include "vemba/Vemba.h"

namespace {

using namespace std::chrono_literals;
using vemba::soak::mib;

constexpr int kExchangePort = 18443;  // the origin every preset builds the library against
constexpr double kDefaultLoadTolerancePercent = 5.0;
constexpr double kDefaultCheckoutTolerancePercent = 10.0;
constexpr const char* kUsage =
    "usage: vemba_soak [--loads N] [--in-flight N] [--checkout-cycles N] "
    "[--load-tolerance PERCENT] [--checkout-tolerance PERCENT]\n";

struct Arguments {
  vemba::soak::LoadSoakOptions loads;
  std::size_t checkoutCycles = 100;
  double loadTolerance = kDefaultLoadTolerancePercent;
  double checkoutTolerance = kDefaultCheckoutTolerancePercent;
};

bool parse(int argc, char** argv, Arguments& out) {
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string_view name = argv[i];
    char* end = nullptr;
    const double value = std::strtod(argv[i + 1], &end);
    if (end == argv[i + 1] || *end != '\0' || value < 0) {
      return false;
    }
    const auto count = static_cast<std::size_t>(value);
    if (name == "--loads") {
      out.loads.loads = count;
    } else if (name == "--in-flight") {
      out.loads.maxInFlight = std::max<std::size_t>(1, count);
    } else if (name == "--checkout-cycles") {
      out.checkoutCycles = count;
    } else if (name == "--load-tolerance") {
      out.loadTolerance = value;
    } else if (name == "--checkout-tolerance") {
      out.checkoutTolerance = value;
    } else {
      return false;
    }
  }
  return argc % 2 == 1;
}

double growthPercent(std::uint64_t from, std::uint64_t to) {
  return from == 0 ? 0
                   : (static_cast<double>(to) - static_cast<double>(from)) * 100.0 /
                         static_cast<double>(from);
}

bool printLoads(const vemba::soak::LoadSoakReport& report, double tolerance) {
  std::printf("== ad loads: %zu (%zu interstitial, %zu rewarded), at most %zu in flight, %.1f s\n",
              report.kept + report.released + report.releasedLate, report.interstitials,
              report.rewardeds, report.peakInFlight, report.seconds);
  std::printf("%-26s %-14s %7s %9s %12s\n", "fault", "expected", "kept", "released", "right class");
  for (const auto& row : report.faults) {
    std::printf("%-26s %-14s %7zu %9zu %12zu\n", row.name.c_str(), row.expected.c_str(), row.kept,
                row.released, row.right);
  }
  std::printf(
      "kept %zu, released in flight %zu; lost %zu, doubled %zu, wrong class %zu, "
      "heard when released %zu, off the main thread %zu, stray %zu\n",
      report.kept, report.released, report.lost, report.doubled, report.wrongClass,
      report.heardWhenReleased, report.offMainThread, report.stray);
  std::printf("longest main-loop stall %.0f ms (by load %zu); released too late to count %zu\n",
              report.longestStallMs, report.longestStallAtLoad, report.releasedLate);
  bool flat = true;
  std::printf(
      "memory, in flight drained (after loads: resident as found / resident after malloc_trim / "
      "malloc heap in use):\n");
  for (const auto& sample : report.memory) {
    std::printf("  %6zu: %7.1f / %7.1f / %7.1f MiB\n", sample.loads, mib(sample.residentKib),
                mib(sample.trimmedKib), mib(sample.heapInUseKib));
  }
  if (report.memory.size() >= 2) {
    // A leak grows with every load, so it shows at the last sample; one sample on its own above
    // the rest (WebKit's allocator not yet scavenged) is no trend.
    const auto& first = report.memory.front();
    const auto& last = report.memory.back();
    std::uint64_t highest = 0;
    for (const auto& sample : report.memory) {
      highest = std::max(highest, sample.trimmedKib);
    }
    const double growth = growthPercent(first.trimmedKib, last.trimmedKib);
    flat = growth <= tolerance;
    std::printf(
        "trimmed at load %zu vs load %zu: %+.1f %% (flat: at most %+.1f %%): %s; highest sample "
        "%+.1f %%\n",
        last.loads, first.loads, growth, tolerance, flat ? "flat" : "GROWING",
        growthPercent(first.trimmedKib, highest));
  }
  for (const std::string& example : report.examples) {
    std::printf("  %s\n", example.c_str());
  }
  return report.failures() == 0 && flat;
}

bool printCheckout(const vemba::soak::CheckoutSoakReport& report, std::size_t asked,
                   double tolerance) {
  std::printf("== checkout present/close cycles: %zu of %zu (%zu preloaded, %zu cold), %.1f s\n",
              report.cycles, asked, report.preloaded, report.cycles - report.preloaded,
              report.seconds);
  const double growth = growthPercent(report.residentEarlyKib, report.residentAfterKib);
  const bool withinTolerance = report.residentEarlyKib == 0 || growth <= tolerance;
  std::printf(
      "resident memory: before %.1f MiB, after cycle %zu %.1f MiB, after the last %.1f MiB "
      "(%+.1f %%, at most %+.1f %%)\n",
      mib(report.residentBeforeKib), report.earlyCycle, mib(report.residentEarlyKib),
      mib(report.residentAfterKib), growth, tolerance);
  std::printf("malloc heap in use: after cycle %zu %.1f MiB, after the last %.1f MiB\n",
              report.earlyCycle, mib(report.heapEarlyKib), mib(report.heapAfterKib));
  std::printf("left: %zu web views, %zu screens, %zu web processes\n", report.webViewsLeft,
              report.screensLeft, report.webProcessesLeft);
  for (const std::string& example : report.examples) {
    std::printf("  %s\n", example.c_str());
  }
  return report.failed == 0 && report.cycles == asked && withinTolerance &&
         report.webViewsLeft == 0 && report.screensLeft == 0 && report.webProcessesLeft == 0;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  if (!parse(argc, argv, arguments)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  // The default network session keeps cookies and caches under these: a folder of our own.
  std::string home = (std::filesystem::temp_directory_path() / "vemba-soak-XXXXXX").string();
  if (mkdtemp(home.data()) == nullptr) {
    std::perror("vemba_soak: temporary folder");
    return 1;
  }
  setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
  setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
  setenv("GTK_A11Y", "none", 0);

  bool passed = false;
  try {
    vemba::exchange::LocalExchange::Options options;
    options.port = kExchangePort;
    options.lifetime = 3600s;
    vemba::exchange::LocalExchange exchange(options);
    // The backend's client reads the trusted bundle when it is first used.
    setenv("SSL_CERT_FILE", exchange.caFile().c_str(), 1);
    if (vemba::platform::ui() == nullptr) {
      throw std::runtime_error("no display (run under xvfb-run -a)");
    }
    vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration("soak-key", false));

    const auto loads = vemba::soak::runLoadSoak(arguments.loads);
    const bool loadsPassed = printLoads(loads, arguments.loadTolerance);
    std::fflush(stdout);
    const auto checkout = vemba::soak::runCheckoutSoak(arguments.checkoutCycles, exchange);
    const bool checkoutPassed =
        printCheckout(checkout, arguments.checkoutCycles, arguments.checkoutTolerance);
    passed = loadsPassed && checkoutPassed;
  } catch (const std::exception& error) {  // no exchange (the port is taken) or no display
    std::fprintf(stderr, "vemba_soak: %s\n", error.what());
  }
  std::error_code ignored;
  std::filesystem::remove_all(home, ignored);
  std::printf("soak: %s\n", passed ? "passed" : "FAILED");
  return passed ? 0 : 1;
}
