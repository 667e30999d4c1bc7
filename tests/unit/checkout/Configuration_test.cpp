#include "vemba/checkout/Configuration.h"

#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"
#include "checkout/webview/CheckoutState.h"

namespace vemba::checkout {
namespace {

class ConfigurationTest : public tests::CheckoutTest {};

TEST_F(ConfigurationTest, TitleIsTheHostsLocalisedStringReadOnceOnFirstUse) {
  platform.device.localizedStrings = {{"checkout_sheet_title", "Kasse"}};
  EXPECT_EQ(configuration().title, "Kasse");
  platform.device.localizedStrings = {{"checkout_sheet_title", "Caisse"}};
  EXPECT_EQ(configuration().title, "Kasse");
  resetCheckoutStateForTesting();  // a fresh record reads the bundle again
  EXPECT_EQ(configuration().title, "Caisse");
}

}  // namespace
}  // namespace vemba::checkout
