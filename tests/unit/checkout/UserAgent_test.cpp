#include "vemba/checkout/UserAgent.h"

#include <gtest/gtest.h>

#include "vemba/checkout/MetaData.h"

namespace vemba::checkout {
namespace {

using CheckoutType = UserAgent::CheckoutType;
using ColorScheme = UserAgent::ColorScheme;

struct SuffixCase {
  CheckoutType type;
  ColorScheme scheme;
  std::optional<MetaData::Platform> platform;
  std::optional<MetaData::EntryPoint> entryPoint;
  const char* expected;  // after "VembaCheckoutKit/3.4.0 "
};

TEST(UserAgentTest, SuffixRules) {
  using enum CheckoutType;
  using enum ColorScheme;
  const SuffixCase cases[] = {
      {standard, automatic, std::nullopt, std::nullopt, "(8.1;automatic;standard)"},
      {standard, web, std::nullopt, std::nullopt, "(8.1;web_default;standard)"},
      // Recovery announces "noconnect" where the schema version stands otherwise.
      {recovery, light, std::nullopt, std::nullopt, "(noconnect;light;standard_recovery)"},
      {standard, light, MetaData::Platform::iOS, std::nullopt, "(8.1;light;standard) iOS"},
      {standard, automatic, std::nullopt, MetaData::EntryPoint::acceleratedCheckouts,
       "(8.1;automatic;standard) AcceleratedCheckouts"},
  };
  for (const SuffixCase& c : cases) {
    EXPECT_EQ(UserAgent::string(c.type, c.scheme, c.platform, c.entryPoint),
              std::string("VembaCheckoutKit/3.4.0 ") + c.expected);
  }
}

TEST(UserAgentTest, RawValuesRoundTripAndRejectAnythingElse) {
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
