#include "vemba/checkout/UserAgent.h"

#include <array>

namespace vemba::checkout {
namespace {

constexpr std::array<std::string_view, 4> kColorSchemeRawValues = {"light", "dark", "automatic",
                                                                   "web_default"};
constexpr std::array<UserAgent::ColorScheme, 4> kColorSchemes = {
    UserAgent::ColorScheme::light, UserAgent::ColorScheme::dark, UserAgent::ColorScheme::automatic,
    UserAgent::ColorScheme::web};

constexpr std::string_view kProduct = "VembaCheckoutKit/";
// A recovery view announces "noconnect" where a standard one announces the schema version.
constexpr std::string_view kRecoveryMarker = "noconnect";
constexpr std::string_view kStandardKind = ";standard";
constexpr std::string_view kRecoveryKind = ";standard_recovery";

}  // namespace

std::string_view rawValue(UserAgent::ColorScheme colorScheme) {
  return kColorSchemeRawValues.at(static_cast<std::size_t>(colorScheme));
}

std::optional<UserAgent::ColorScheme> colorSchemeFrom(std::string_view raw) {
  for (const UserAgent::ColorScheme scheme : kColorSchemes) {
    if (rawValue(scheme) == raw) {
      return scheme;
    }
  }
  return std::nullopt;
}

std::string UserAgent::string(CheckoutType type, ColorScheme colorScheme,
                              std::optional<MetaData::Platform> platform,
                              std::optional<MetaData::EntryPoint> entryPoint) {
  const bool recovery = type == CheckoutType::recovery;
  std::string result;
  result.append(kProduct).append(version).append(" (");
  result.append(recovery ? kRecoveryMarker : MetaData::schemaVersion).append(";");
  result.append(rawValue(colorScheme));
  result.append(recovery ? kRecoveryKind : kStandardKind).append(")");
  if (platform) {
    result.append(" ").append(rawValue(*platform));
  }
  if (entryPoint) {
    result.append(" ").append(rawValue(*entryPoint));
  }
  return result;
}

}  // namespace vemba::checkout
