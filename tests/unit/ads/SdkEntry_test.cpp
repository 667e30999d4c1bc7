// Initialisation, the user-agent cache, the device description and the error values.
#include <gtest/gtest.h>

#include "AdTestSupport.h"
#include "ads/core/DeviceDescription.h"
#include "ads/core/UserAgentFetcher.h"
#include "vemba/ads/VembaError.h"

namespace vemba::tests {
namespace {

using SdkEntryTest = AdTest;

TEST_F(SdkEntryTest, InitializeStoresKeyPrewarmsOnceAndCompletesSynchronously) {
  EXPECT_FALSE(VembaSDK::shared().apiKey());
  std::vector<bool> results;
  VembaSDK::shared().initialize(VembaConfiguration("key-1", true),
                                [&](bool ok) { results.push_back(ok); });
  EXPECT_EQ(results, std::vector<bool>{true});  // once, before initialize returned
  EXPECT_EQ(VembaSDK::shared().apiKey(), "key-1");
  EXPECT_EQ(UserAgentFetcher::shared().cachedUserAgent(), kIPhoneUserAgent);
  EXPECT_EQ(logs,
            (std::vector<std::string>{"VembaSDK initializing with API Key: key-1",
                                      std::string("User Agent pre-warmed: ") + kIPhoneUserAgent}));
  EXPECT_EQ(platform.mainQueue.pendingCount(), 0U);  // nothing dispatched

  // A second one overwrites the key and finds the user agent cached.
  const int readsAfterFirst = platform.device.deviceReads;
  platform.device.modelValue = "iPad";  // a changed device must not change the cached text
  VembaSDK::shared().initialize(VembaConfiguration("", false));
  EXPECT_EQ(VembaSDK::shared().apiKey(), "");  // empty keys are stored, not refused
  EXPECT_EQ(platform.device.deviceReads, readsAfterFirst);
  EXPECT_EQ(UserAgentFetcher::shared().cachedUserAgent(), kIPhoneUserAgent);
}

TEST_F(SdkEntryTest, AppInfoFallbacks) {
  struct Case {
    std::optional<std::string> bundle;
    bool hasDictionary;
    std::optional<platform::InfoValue> version;
    const char* expectedBundle;
    const char* expectedVersion;
  };
  using Kind = platform::InfoValue::Kind;
  const Case cases[] = {
      {"com.host", true, platform::InfoValue{Kind::string, "4.5"}, "com.host", "4.5"},
      {std::nullopt, true, platform::InfoValue{Kind::string, "4.5"}, "unknown.bundle", "4.5"},
      {"com.host", false, platform::InfoValue{Kind::string, "4.5"}, "com.host", "1.0"},
      {"com.host", true, std::nullopt, "com.host", "1.0"},
      {"com.host", true, platform::InfoValue{Kind::other, ""}, "com.host", "1.0"},
  };
  for (const Case& c : cases) {
    platform.device.bundleIdentifierValue = c.bundle;
    platform.device.hasInfoDictionaryValue = c.hasDictionary;
    platform.device.shortVersionValue = c.version;
    const ads::AppInfo app = ads::currentAppInfo();
    EXPECT_EQ(app.bundle, c.expectedBundle);
    EXPECT_EQ(app.ver, c.expectedVersion);
  }
}

// The other device fields, and the all-zero identifier, are checked on the sent bid request.
TEST_F(SdkEntryTest, AdvertisingIdentifierIsWrittenAsAnUppercaseUuid) {
  platform.device.advertisingIdValue = {0xDE, 0xAD, 0xBE, 0xEF, 0, 1, 0x40, 2,
                                        0x80, 3,    4,    5,    6, 7, 8,    0xAB};
  EXPECT_EQ(ads::currentDeviceInfo("ua").ifa, "DEADBEEF-0001-4002-8003-0405060708AB");
}

TEST_F(SdkEntryTest, ErrorCodesKeepTheirPlaces) {
  const VembaError all[] = {VembaError::internalError("m"),
                            VembaError::invalidRequest(),
                            VembaError::noFill(),
                            VembaError::timeout(),
                            VembaError::encodingFailed(),
                            VembaError::noData(),
                            VembaError::noBid()};
  for (int code = 0; code < 7; ++code) {
    const Error error = all[code].toError();
    EXPECT_EQ(error, (Error{"VembaError", code,
                            "The operation couldn\u2019t be completed. (VembaError error " +
                                std::to_string(code) + ".)"}));
    if (code > 0) {
      EXPECT_EQ(VembaError::from(error), all[code]);
    }
  }
  EXPECT_FALSE(VembaError::from(Error{"URLError", 6, ""}));
}

}  // namespace
}  // namespace vemba::tests
