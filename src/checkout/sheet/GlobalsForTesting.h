// Tests only: returns every process-wide singleton of the checkout core to its first-use state
// (the web view cache and its flag, the global configuration and its switches, the shared
// logger). Call between tests, with no
// other thread using the checkout core.
#pragma once

namespace vemba::checkout {

void resetGlobalsForTesting();

}  // namespace vemba::checkout
