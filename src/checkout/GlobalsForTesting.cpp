#include "checkout/GlobalsForTesting.h"

#include "checkout/ConfigurationStore.h"
#include "checkout/OSLogger.h"

namespace vemba::checkout {

void resetGlobalsForTesting() {
  detail::resetConfigurationForTesting();
  OSLogger::resetSharedForTesting();
}

}  // namespace vemba::checkout
