#include "vemba/checkout/UserAgent.h"

#include <gtest/gtest.h>

#include "vemba/checkout/MetaData.h"

namespace vemba::checkout {
namespace {

using ColorScheme = UserAgent::ColorScheme;

// How the user agent is put together is checked on the views it is given to (CheckoutWebView_test)
// and on the wire (CheckoutSheet_test); here, the raw values it and the hosts' options use.
TEST(UserAgentTest, RawValuesRoundTripAndRejectAnythingElse) {
  for (const char* raw : {"light", "dark", "automatic", "web_default"}) {
    EXPECT_EQ(rawValue(colorSchemeFrom(raw).value()), raw);
  }
  EXPECT_EQ(colorSchemeFrom("web_default"), ColorScheme::web);
  EXPECT_EQ(colorSchemeFrom("web"), std::nullopt);
  EXPECT_EQ(colorSchemeFrom("Dark"), std::nullopt);
  EXPECT_EQ(entryPointFrom("AcceleratedCheckouts"), MetaData::EntryPoint::acceleratedCheckouts);
  EXPECT_EQ(entryPointFrom("acceleratedCheckouts"), std::nullopt);
  EXPECT_EQ(metaDataPlatformFrom("iOS"), MetaData::Platform::iOS);
  EXPECT_EQ(metaDataPlatformFrom("ios"), std::nullopt);
  EXPECT_EQ(platformFrom("ReactNative"), Platform::reactNative);
  EXPECT_EQ(platformFrom("iOS"), std::nullopt);
}

}  // namespace
}  // namespace vemba::checkout
