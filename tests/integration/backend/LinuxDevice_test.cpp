// Device, bundle and identifier values of the Linux backend.
#include "LinuxDevice.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "vemba/linux/LinuxPlatform.h"

namespace vemba::linux_platform {
namespace {

TEST(LinuxDeviceTest, SystemVersionIsTheNumericPrefixOfTheKernelRelease) {
  const std::pair<const char*, const char*> rows[] = {
      {"6.1.0-18-amd64", "6.1.0"},
      {"5.15.153.1-microsoft-standard-WSL2", "5.15.153.1"},
      {"6", "6"},
      {"6.2.0.-rc1", "6.2.0"},
      {"6.1.0rc7", "6.1.0"},
      {"custom-kernel", "custom-kernel"},
      {"", ""},
  };
  for (const auto& [release, expected] : rows) {
    EXPECT_EQ(systemVersionFromRelease(release), expected) << release;
  }
  EXPECT_TRUE(std::regex_match(LinuxDevice().systemVersion(), std::regex(R"(\d+(\.\d+)*)")))
      << LinuxDevice().systemVersion();
}

class BundleInfoTest : public ::testing::Test {
 protected:
  void TearDown() override {
    clearBundleInfo();
    g_application_set_default(nullptr);
  }
  const LinuxDevice device_;
};

TEST_F(BundleInfoTest, NothingIsKnownUntilTheHostsValuesFormTheDictionary) {
  EXPECT_EQ(device_.bundleIdentifier(), std::nullopt);
  EXPECT_FALSE(device_.hasInfoDictionary());
  setBundleInfo("com.example.host", "2.3");
  EXPECT_EQ(device_.bundleIdentifier(), "com.example.host");
  ASSERT_TRUE(device_.hasInfoDictionary());
  const std::optional<platform::InfoValue> version =
      device_.infoValue(LinuxDevice::kShortVersionKey);
  ASSERT_TRUE(version.has_value());
  EXPECT_EQ(version->kind, platform::InfoValue::Kind::string);
  EXPECT_EQ(version->text, "2.3");
  EXPECT_EQ(device_.infoValue(LinuxDevice::kIdentifierKey)->text, "com.example.host");
  EXPECT_EQ(device_.infoValue("CFBundleVersion"), std::nullopt);

  // A dictionary without a short version is still a dictionary.
  setBundleInfo(std::nullopt, std::nullopt);
  EXPECT_TRUE(device_.hasInfoDictionary());
  EXPECT_EQ(device_.infoValue(LinuxDevice::kShortVersionKey), std::nullopt);
  EXPECT_EQ(device_.bundleIdentifier(), std::nullopt);

  clearBundleInfo();
  EXPECT_FALSE(device_.hasInfoDictionary());
}

TEST_F(BundleInfoTest, TheDefaultApplicationIdFillsInForAMissingIdentifier) {
  GApplication* application =
      g_application_new("org.example.LinuxHost", static_cast<GApplicationFlags>(0));
  g_application_set_default(application);
  EXPECT_EQ(device_.bundleIdentifier(), "org.example.LinuxHost");
  EXPECT_FALSE(device_.hasInfoDictionary());

  setBundleInfo("com.example.explicit", std::nullopt);
  EXPECT_EQ(device_.bundleIdentifier(), "com.example.explicit");
  setBundleInfo(std::nullopt, "1.0.1");
  EXPECT_EQ(device_.bundleIdentifier(), "org.example.LinuxHost");

  g_application_set_default(nullptr);
  g_object_unref(application);
  EXPECT_EQ(device_.bundleIdentifier(), std::nullopt);
}

TEST(RandomUuidSourceTest, IdentifiersAreVersion4AndDistinct) {
  RandomUuidSource source;
  std::set<platform::Uuid> seen;
  for (int i = 0; i < 1000; ++i) {
    const platform::Uuid uuid = source.randomUuid();
    EXPECT_EQ(uuid[6] & 0xF0, 0x40);
    EXPECT_EQ(uuid[8] & 0xC0, 0x80);
    seen.insert(uuid);
  }
  EXPECT_EQ(seen.size(), 1000u);
}

}  // namespace
}  // namespace vemba::linux_platform
