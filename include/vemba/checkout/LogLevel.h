// The threshold of the checkout kit's diagnostic log. Value type.
//
// Levels are not ordered by severity: `debug` lets through only lines written at debug level
// (the debug and info calls), `error` only lines written at error level (the error and fault
// calls), `all` both and `none` nothing. The case order is the declaration order.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "vemba/Export.h"

namespace vemba::checkout {

enum class LogLevel { all, debug, error, none };

inline constexpr std::array<LogLevel, 4> kAllLogLevels = {LogLevel::all, LogLevel::debug,
                                                          LogLevel::error, LogLevel::none};

// "all", "debug", "error" or "none".
VEMBA_EXPORT std::string_view rawValue(LogLevel level);
// The level whose raw value is exactly `raw` (case-sensitive), else absent.
VEMBA_EXPORT std::optional<LogLevel> logLevelFrom(std::string_view raw);

}  // namespace vemba::checkout
