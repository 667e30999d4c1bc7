#include "vemba/checkout/Configuration.h"

#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"

namespace vemba::checkout {
namespace {

class ConfigurationTest : public tests::CheckoutTest {};

TEST_F(ConfigurationTest, TitleIsTheHostsLocalisedStringReadOnceOnFirstUse) {
  platform.device.localizedStrings = {{"checkout_sheet_title", "Kasse"}};
  EXPECT_EQ(configuration().title, "Kasse");
  platform.device.localizedStrings = {{"checkout_sheet_title", "Caisse"}};
  EXPECT_EQ(configuration().title, "Kasse");
}

}  // namespace
}  // namespace vemba::checkout
