// The checkout kit's fixed identity: its version, the schema version it speaks with the checkout
// page, the entry points and host platforms it announces. Constants and value types only.
#pragma once

#include <optional>
#include <string_view>

#include "vemba/Export.h"

namespace vemba::checkout {

// The kit's version.
inline constexpr std::string_view version = "3.4.0";

// A namespace-like holder: no instances.
struct VEMBA_EXPORT MetaData {
  MetaData() = delete;

  static constexpr std::string_view schemaVersion = "8.1";

  // How a checkout was entered; callers carry it as an optional (absent = the ordinary entry).
  enum class EntryPoint { acceleratedCheckouts };

  enum class Platform { iOS, reactNative };
};

// The host platform a configuration may announce (absent by default).
enum class Platform { reactNative };

// "AcceleratedCheckouts".
VEMBA_EXPORT std::string_view rawValue(MetaData::EntryPoint entryPoint);
// "iOS" or "ReactNative".
VEMBA_EXPORT std::string_view rawValue(MetaData::Platform platform);
// "ReactNative".
VEMBA_EXPORT std::string_view rawValue(Platform platform);

// Exact, case-sensitive matches of the raw values; absent for anything else.
VEMBA_EXPORT std::optional<MetaData::EntryPoint> entryPointFrom(std::string_view raw);
VEMBA_EXPORT std::optional<MetaData::Platform> metaDataPlatformFrom(std::string_view raw);
VEMBA_EXPORT std::optional<Platform> platformFrom(std::string_view raw);

}  // namespace vemba::checkout
