#include "vemba/checkout/LogLevel.h"

namespace vemba::checkout {
namespace {
constexpr std::array<std::string_view, 4> kRawValues = {"all", "debug", "error", "none"};
}  // namespace

std::string_view rawValue(LogLevel level) {
  return kRawValues.at(static_cast<std::size_t>(level));
}

std::optional<LogLevel> logLevelFrom(std::string_view raw) {
  for (const LogLevel level : kAllLogLevels) {
    if (rawValue(level) == raw) {
      return level;
    }
  }
  return std::nullopt;
}

}  // namespace vemba::checkout
