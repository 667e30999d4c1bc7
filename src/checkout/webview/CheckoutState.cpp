#include "checkout/webview/CheckoutState.h"

#include <string>

#include "checkout/config/OSLogger.h"
#include "common/ProcessWide.h"
#include "vemba/checkout/Configuration.h"

namespace vemba::checkout {
namespace {
constinit ProcessWide<CheckoutState> gState;
}  // namespace

CheckoutState& state() {
  return gState.get();
}

void resetCheckoutStateForTesting() {
  gState.resetForTesting();
  OSLogger& logger = OSLogger::shared();
  logger.setPrefix(std::string(OSLogger::kDefaultPrefix));
  logger.setLogLevel(OSLogger::kDefaultLogLevel);
}

Configuration configuration() {
  return state().configuration.get();
}

void Configuration::Preloading::setEnabled(bool enabled) {
  enabled_ = enabled;
  state().cache.setPreloadingActivatedByClient(false);
}

}  // namespace vemba::checkout
