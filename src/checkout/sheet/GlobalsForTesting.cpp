#include "checkout/sheet/GlobalsForTesting.h"

#include "checkout/config/ConfigurationStore.h"
#include "checkout/config/OSLogger.h"
#include "checkout/webview/CheckoutWebView.h"

namespace vemba::checkout {

void resetGlobalsForTesting() {
  // First: a released cached view logs through the configuration and the shared logger.
  CheckoutWebView::resetForTesting();
  detail::resetConfigurationForTesting();
  OSLogger::resetSharedForTesting();
}

}  // namespace vemba::checkout
