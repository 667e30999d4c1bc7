#include "GlibLogSink.h"

#include <glib.h>

#include <string>

#include "vemba/linux/LinuxPlatform.h"

namespace vemba::linux_platform {
namespace {

struct GlibLevel {
  GLogLevelFlags flags;
  const char* priority;
};

GlibLevel glibLevelOf(platform::LogSeverity severity) {
  switch (severity) {
    case platform::LogSeverity::debug:
      return {G_LOG_LEVEL_DEBUG, "7"};
    case platform::LogSeverity::info:
      return {G_LOG_LEVEL_INFO, "6"};
    case platform::LogSeverity::error:
      return {G_LOG_LEVEL_WARNING, "4"};
    case platform::LogSeverity::fault:
      return {G_LOG_LEVEL_CRITICAL, "4"};
  }
  return {G_LOG_LEVEL_WARNING, "4"};
}

const char* logDomainOf(std::string_view subsystem) {
  return subsystem == platform::kCheckoutLogSubsystem ? kCheckoutLogDomain : kLogDomain;
}

}  // namespace

void GlibLogSink::write(platform::LogSeverity severity, std::string_view subsystem,
                        std::string_view category, std::string_view line) {
  const GlibLevel level = glibLevelOf(severity);
  // Copies, so that each value ends with a NUL as GLib's writers expect.
  const std::string message(line);
  const std::string subsystemText(subsystem);
  const std::string categoryText(category);
  const GLogField fields[] = {
      {"MESSAGE", message.c_str(), static_cast<gssize>(message.size())},
      {"GLIB_DOMAIN", logDomainOf(subsystem), -1},
      {"PRIORITY", level.priority, -1},
      {kLogSubsystemField, subsystemText.c_str(), -1},
      {kLogCategoryField, categoryText.c_str(), -1},
  };
  g_log_structured_array(level.flags, fields, G_N_ELEMENTS(fields));
}

}  // namespace vemba::linux_platform
