#include "vemba/checkout/Configuration.h"

#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"
#include "checkout/ConfigurationStore.h"

namespace vemba::checkout {
namespace {

class ConfigurationTest : public testing::CheckoutTest {};

TEST_F(ConfigurationTest, Defaults) {
  const Configuration c = configuration();
  EXPECT_EQ(c.colorScheme, UserAgent::ColorScheme::automatic);
  EXPECT_FALSE(c.confetti.enabled);
  EXPECT_TRUE(c.confetti.particles.empty());
  EXPECT_TRUE(c.preloading.enabled());
  EXPECT_EQ(c.tintColor, Color::rgba(0.09, 0.45, 0.69, 1.0));
  EXPECT_EQ(c.spinnerColor, Color::rgba(0.09, 0.45, 0.69, 1.0));
  EXPECT_EQ(c.backgroundColor.kind, Color::Kind::systemBackground);
  ASSERT_NE(c.logger, nullptr);
  EXPECT_NE(dynamic_cast<NoOpLogger*>(c.logger.get()), nullptr);
  EXPECT_EQ(c.title, "Checkout");
  EXPECT_EQ(c.closeButtonTintColor, std::nullopt);
  EXPECT_EQ(c.platform, std::nullopt);
  EXPECT_EQ(c.logLevel, LogLevel::error);
  EXPECT_TRUE(detail::invalidateOnConfigurationChange());
}

TEST_F(ConfigurationTest, TitleIsTheHostsLocalisedStringReadOnceOnFirstUse) {
  platform.device.localizedStrings = {{"checkout_sheet_title", "Kasse"}};
  EXPECT_EQ(configuration().title, "Kasse");
  platform.device.localizedStrings = {{"checkout_sheet_title", "Caisse"}};
  EXPECT_EQ(configuration().title, "Kasse");
}

TEST_F(ConfigurationTest, ReadsAreCopiesAndWritesGoThroughTheStore) {
  Configuration copy = configuration();
  copy.title = "Changed";
  EXPECT_EQ(configuration().title, "Checkout");
  detail::replaceConfiguration(copy);
  EXPECT_EQ(configuration().title, "Changed");
  detail::modifyConfiguration([](Configuration& c) { c.logLevel = LogLevel::all; });
  EXPECT_EQ(configuration().title, "Changed");
  EXPECT_EQ(configuration().logLevel, LogLevel::all);
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

TEST_F(ConfigurationTest, ResetRestoresTheSwitch) {
  detail::setInvalidateOnConfigurationChange(false);
  EXPECT_FALSE(detail::invalidateOnConfigurationChange());
  resetGlobalsForTesting();
  EXPECT_TRUE(detail::invalidateOnConfigurationChange());
}

}  // namespace
}  // namespace vemba::checkout
