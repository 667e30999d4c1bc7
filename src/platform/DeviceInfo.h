// The device, the host application's bundle and the advertising identifier, as the platform
// reports them. The core decides the fallbacks; these only read.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vemba::platform {

// A value of the bundle's information dictionary, as far as the core needs to tell kinds apart.
struct InfoValue {
  enum class Kind { string, other };
  Kind kind = Kind::other;
  std::string text;  // set for Kind::string
};

// Contract: thread-safe reads; values may change between calls (they are read afresh).
class DeviceInfo {
 public:
  virtual ~DeviceInfo() = default;
  virtual std::string systemVersion() const = 0;  // e.g. "17.4.1"
  virtual std::string model() const = 0;          // the generic family name, e.g. "iPhone"
};

// The keys of the bundle's information dictionary that the library reads.
inline constexpr std::string_view kBundleIdentifierKey = "CFBundleIdentifier";
inline constexpr std::string_view kBundleShortVersionKey = "CFBundleShortVersionString";

// Contract: thread-safe reads of the host application's bundle.
class BundleInfo {
 public:
  virtual ~BundleInfo() = default;
  virtual std::optional<std::string> bundleIdentifier() const = 0;
  // False when the bundle has no information dictionary at all.
  virtual bool hasInfoDictionary() const = 0;
  // The value stored under `key`, absent when there is none.
  virtual std::optional<InfoValue> infoValue(std::string_view key) const = 0;
  // The localised string for `key` in `table`, or `defaultValue` when there is none.
  virtual std::string localizedString(std::string_view key, std::string_view defaultValue,
                                      std::string_view table) const = 0;
};

// A 128-bit identifier (RFC 4122 layout, bytes in network order).
using Uuid = std::array<std::uint8_t, 16>;

// Contract: thread-safe. Returns the platform's advertising identifier as it stands: the all-zero
// identifier when the user has not allowed tracking or the platform has none.
class AdvertisingIdProvider {
 public:
  virtual ~AdvertisingIdProvider() = default;
  virtual Uuid advertisingIdentifier() const = 0;
};

// Contract: thread-safe source of fresh random (version 4) identifiers.
class UuidSource {
 public:
  virtual ~UuidSource() = default;
  virtual Uuid randomUuid() = 0;
};

// The canonical upper-case 8-4-4-4-12 text of an identifier.
std::string uuidString(const Uuid& uuid);

}  // namespace vemba::platform
