// Device, bundle, advertising identifier, random identifiers and clocks of the Linux backend.
// All types are stateless readers (the bundle settings live in one process-wide, mutex-guarded
// record set through vemba/linux/LinuxPlatform.h) and are thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/DeviceInfo.h"

namespace vemba::linux_platform {

// The numeric prefix of a kernel release: digits and dots up to the first other character,
// without a trailing dot ("6.1.0-18-amd64" gives "6.1.0"). The release itself when it does not
// start with a digit.
std::string systemVersionFromRelease(std::string_view release);

// systemVersion(): the numeric prefix of uname(2)'s release, read afresh on each call.
// model(): always "Linux", the generic family name of the platform.
// bundleIdentifier(): the host's identifier (setBundleInfo), else the default GApplication's
//   application id, else absent.
// hasInfoDictionary()/infoValue(): the dictionary setBundleInfo made, with the keys
//   "CFBundleIdentifier" and "CFBundleShortVersionString" (each when set); none before.
// localizedString(): always `defaultValue`: there are no string tables on Linux.
// advertisingIdentifier(): always the all-zero identifier: Linux has no advertising
//   identifier, which reads like a device on which tracking is not allowed.
class LinuxDevice final : public platform::DeviceInfo,
                          public platform::BundleInfo,
                          public platform::AdvertisingIdProvider {
 public:
  static constexpr std::string_view kModel = "Linux";
  static constexpr std::string_view kIdentifierKey = platform::kBundleIdentifierKey;
  static constexpr std::string_view kShortVersionKey = platform::kBundleShortVersionKey;

  std::string systemVersion() const override;
  std::string model() const override;
  std::optional<std::string> bundleIdentifier() const override;
  bool hasInfoDictionary() const override;
  std::optional<platform::InfoValue> infoValue(std::string_view key) const override;
  std::string localizedString(std::string_view key, std::string_view defaultValue,
                              std::string_view table) const override;
  platform::Uuid advertisingIdentifier() const override;
};

// Version 4 identifiers from the kernel's random source (getrandom(2)).
class RandomUuidSource final : public platform::UuidSource {
 public:
  platform::Uuid randomUuid() override;
};

// The system's wall clock and its monotonic clock.
class SystemClock final : public platform::Clock {
 public:
  std::chrono::system_clock::time_point wallNow() const override;
  std::chrono::steady_clock::time_point monotonicNow() const override;
};

}  // namespace vemba::linux_platform
