// The checkout soak: present/close cycles of the checkout sheet over a host window, alternately
// cold (nothing preloaded) and preloaded (the same URL preloaded and its load finished first),
// each closed by the host's dismiss() once the page has sent its first pixel. Afterwards, with the
// preloaded page invalidated, no web view, no screen of the library and no web process may be
// left, and resident memory must be back near where it stood after the first tenth of the cycles.
//
// Runs on the main thread with GTK up (a display), driving GLib's default main context itself;
// `origin` is the local exchange's, whose demo checkout each cycle presents. Owned by the caller
// for one run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "LocalExchange.h"

namespace vemba::soak {

struct CheckoutSoakReport {
  std::size_t cycles = 0;     // cycles that ran to the end
  std::size_t preloaded = 0;  // of which presented from the preloaded page
  std::size_t failed = 0;     // cycles that went wrong (see examples)
  std::uint64_t residentBeforeKib = 0;
  std::uint64_t residentEarlyKib = 0;  // after cycle `earlyCycle`
  std::size_t earlyCycle = 0;
  std::uint64_t residentAfterKib = 0;  // after the last cycle and the census
  std::uint64_t heapEarlyKib = 0;      // malloc's heap in use at the same two points
  std::uint64_t heapAfterKib = 0;
  std::size_t webViewsLeft = 0;
  std::size_t screensLeft = 0;  // the library's screens; the host window's own is not counted
  std::size_t webProcessesLeft = 0;
  double seconds = 0;
  std::vector<std::string> examples;  // the first few failures, as text
};

// At most `cycles` cycles; stops at the first that fails.
CheckoutSoakReport runCheckoutSoak(std::size_t cycles, const exchange::LocalExchange& exchange);

}  // namespace vemba::soak
