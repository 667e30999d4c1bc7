#include "vemba/checkout/Configuration.h"

#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"
#include "checkout/ConfigurationStore.h"

namespace vemba::checkout {
namespace {

class ConfigurationTest : public testing::CheckoutTest {};

TEST_F(ConfigurationTest, TitleIsTheHostsLocalisedStringReadOnceOnFirstUse) {
  platform.device.localizedStrings = {{"checkout_sheet_title", "Kasse"}};
  EXPECT_EQ(configuration().title, "Kasse");
  platform.device.localizedStrings = {{"checkout_sheet_title", "Caisse"}};
  EXPECT_EQ(configuration().title, "Kasse");
}

int gPreloadWrites = 0;

TEST_F(ConfigurationTest, EveryWriteOfPreloadingEnabledRunsTheHookEvenWithTheSameValue) {
  gPreloadWrites = 0;
  detail::setPreloadingEnabledWriteHook([] { ++gPreloadWrites; });
  Configuration c = configuration();
  c.preloading.setEnabled(true);  // same value
  c.preloading.setEnabled(false);
  detail::setPreloadingEnabledWriteHook(nullptr);
  c.preloading.setEnabled(true);
  EXPECT_EQ(gPreloadWrites, 2);
  EXPECT_TRUE(c.preloading.enabled());
}

}  // namespace
}  // namespace vemba::checkout
