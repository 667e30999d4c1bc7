// Initialisation, the user-agent cache, the device description, the error values and the
// entry points' thread contracts.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "AdTestSupport.h"
#include "ads/core/DeviceDescription.h"
#include "ads/core/UserAgentFetcher.h"
#include "common/ContractViolation.h"
#include "vemba/ads/VembaError.h"
#include "vemba/ads/VembaInterstitialAd.h"
#include "vemba/checkout/CheckoutSheet.h"

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

// Main-thread-only entry points report a call from another thread before doing anything; the
// thread-safe ones take it.
TEST_F(SdkEntryTest, MainThreadOnlyEntryPointsRefuseOtherThreads) {
#if !defined(VEMBA_THREAD_CHECKS)
  GTEST_SKIP() << "thread checks are compiled out of this build";
#endif
  const std::shared_ptr<VembaInterstitialAd> ad = VembaInterstitialAd::create("unit-1");
  const Url checkoutUrl = url("https://shop.example/checkouts/c1");
  const struct {
    std::string entryPoint;
    std::function<void()> call;
    bool mainThreadOnly;
  } cases[] = {
      {"initialize", [] { VembaSDK::shared().initialize(VembaConfiguration("key", false)); }, true},
      {"load", [&] { ad->load(); }, true},
      {"show", [&] { ad->show(fakePlatform.hostScreen()); }, true},
      {"present", [&] { checkout::present(checkoutUrl, fakePlatform.hostScreen()); }, true},
      {"CheckoutSheet", [&] { checkout::CheckoutSheet sheet(checkoutUrl); }, true},
      {"apiKey", [] { (void)VembaSDK::shared().apiKey(); }, false},
      {"setPrivacy", [] { VembaSDK::shared().setPrivacy({}); }, false},
  };
  const ScopedContractViolationHook hook(throwContractViolationForTesting);
  for (const auto& c : cases) {
    std::string violation;
    std::thread([&] {
      try {
        c.call();
      } catch (const ContractViolationForTesting& e) {
        violation = e.what();
      }
    }).join();
    EXPECT_EQ(violation, c.mainThreadOnly ? c.entryPoint + " called off the main thread" : "");
  }
  EXPECT_FALSE(VembaSDK::shared().apiKey());
  EXPECT_EQ(platform.mainQueue.pendingCount(), 0U);
  EXPECT_TRUE(fakePlatform.bidRequests().empty());
}

}  // namespace
}  // namespace vemba::tests
