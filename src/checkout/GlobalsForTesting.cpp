#include "checkout/GlobalsForTesting.h"

#include "checkout/CheckoutWebView.h"
#include "checkout/ConfigurationStore.h"
#include "checkout/OSLogger.h"

namespace vemba::checkout {

void resetGlobalsForTesting() {
  // First: a released cached view logs through the configuration and the shared logger.
  CheckoutWebView::resetForTesting();
  detail::resetConfigurationForTesting();
  OSLogger::resetSharedForTesting();
}

}  // namespace vemba::checkout
