// The platform's system log.
#pragma once

#include <string_view>

namespace vemba::platform {

enum class LogSeverity { debug, info, error, fault };

// The subsystems the library writes under: the checkout half's, and the library's own for the ad
// half and the shared backend. A backend may file the two apart (the Linux one in two log
// domains), so every writer names one of these.
inline constexpr std::string_view kCheckoutLogSubsystem = "com.vemba.VembaCheckoutKit";
inline constexpr std::string_view kLibraryLogSubsystem = "vemba";

// "debug", "info", "error" or "fault".
constexpr std::string_view severityName(LogSeverity severity) {
  switch (severity) {
    case LogSeverity::debug:
      return "debug";
    case LogSeverity::info:
      return "info";
    case LogSeverity::error:
      return "error";
    case LogSeverity::fault:
      return "fault";
  }
  return "unknown";
}

// Contract: thread-safe; write() takes the complete line and never treats it as a format string.
// `subsystem` and `category` identify the writer in the system log.
class LogSink {
 public:
  virtual ~LogSink() = default;
  virtual void write(LogSeverity severity, std::string_view subsystem, std::string_view category,
                     std::string_view line) = 0;
};

}  // namespace vemba::platform
