// The checkout half's process-wide state: the global configuration with its switch, and the
// preload cache. The public configuration() and the writes of the configuration's preloading
// switch are defined beside it, since such a write clears the cache's flag.
//
// Owner: the process, through state(); created on first use (thread-safe) and never destroyed at
// exit (a cached view must not be torn down by static destructors after the platform has gone).
// Members follow their own thread contracts. Tests alone replace it, through
// resetCheckoutStateForTesting().
#pragma once

#include "checkout/config/ConfigurationStore.h"
#include "checkout/webview/CheckoutWebViewCache.h"

namespace vemba::checkout {

struct CheckoutState {
  ConfigurationStore configuration;
  // Declared after the configuration, so destroyed before it: a released view logs and may read
  // the configuration while it goes.
  CheckoutWebViewCache cache;
};

CheckoutState& state();

// Tests only, between tests, with no other thread using the checkout core. In this order: takes
// the state out (the next state() creates a fresh one, whose record is made with the defaults
// from the platform installed then); destroys it, its cached views first and then the
// configuration; puts the shared logger back to its first-use prefix and level. No reference
// obtained from state() before the reset may be used after it.
void resetCheckoutStateForTesting();

}  // namespace vemba::checkout
