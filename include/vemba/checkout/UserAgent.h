// The suffix the checkout web view appends to the platform's user agent, identifying the kit,
// the schema version, the colour scheme and the kind of view to the checkout page.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vemba/Export.h"
#include "vemba/checkout/MetaData.h"

namespace vemba::checkout {

// A namespace-like holder: no instances.
struct VEMBA_EXPORT UserAgent {
  UserAgent() = delete;

  // Also the type of the configuration's colour scheme. Note `web` is "web_default".
  enum class ColorScheme { light, dark, automatic, web };

  // `recovery` for a web view built in recovery mode.
  enum class CheckoutType { standard, recovery };

  // E.g. "VembaCheckoutKit/3.4.0 (8.1;automatic;standard)", or for a recovery view
  // "VembaCheckoutKit/3.4.0 (noconnect;dark;standard_recovery) ReactNative AcceleratedCheckouts".
  static std::string string(CheckoutType type, ColorScheme colorScheme,
                            std::optional<MetaData::Platform> platform,
                            std::optional<MetaData::EntryPoint> entryPoint);
};

// "light", "dark", "automatic" or "web_default".
VEMBA_EXPORT std::string_view rawValue(UserAgent::ColorScheme colorScheme);
// Exact, case-sensitive match of a raw value; absent for anything else.
VEMBA_EXPORT std::optional<UserAgent::ColorScheme> colorSchemeFrom(std::string_view raw);

}  // namespace vemba::checkout
