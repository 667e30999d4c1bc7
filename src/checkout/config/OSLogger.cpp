#include "checkout/config/OSLogger.h"

#include <utility>

#include "platform/LogSink.h"
#include "platform/Services.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kDebugTag = "Debug";
constexpr std::string_view kInfoTag = "Info";
constexpr std::string_view kErrorTag = "Error";
constexpr std::string_view kFaultTag = "Fault";

std::string_view tagOf(platform::LogSeverity severity) {
  switch (severity) {
    case platform::LogSeverity::debug:
      return kDebugTag;
    case platform::LogSeverity::info:
      return kInfoTag;
    case platform::LogSeverity::error:
      return kErrorTag;
    case platform::LogSeverity::fault:
      return kFaultTag;
  }
  return kErrorTag;
}

}  // namespace

OSLogger::OSLogger() : OSLogger(std::string(kDefaultPrefix), kDefaultLogLevel) {}

OSLogger::OSLogger(std::string prefix, LogLevel logLevel)
    : prefix_(std::move(prefix)), logLevel_(logLevel) {}

OSLogger& OSLogger::shared() {
  // Deliberately never destroyed at exit: lines may still be written by other static destructors.
  static auto* const instance = new OSLogger();
  return *instance;
}

void OSLogger::debug(std::string_view message) const {
  write(platform::LogSeverity::debug, message);
}
void OSLogger::info(std::string_view message) const {
  write(platform::LogSeverity::info, message);
}
void OSLogger::error(std::string_view message) const {
  write(platform::LogSeverity::error, message);
}
void OSLogger::fault(std::string_view message) const {
  write(platform::LogSeverity::fault, message);
}

std::string OSLogger::prefix() const {
  const MutexLock lock(prefixMutex_);
  return prefix_;
}

void OSLogger::setPrefix(std::string prefix) {
  const MutexLock lock(prefixMutex_);
  prefix_ = std::move(prefix);
}

void OSLogger::write(platform::LogSeverity severity, std::string_view message) const {
  // debug and info calls are tested as `debug`, error and fault calls as `error`; the threshold
  // passes only its own level (`all` passes both, `none` neither).
  const LogLevel threshold = logLevel();
  const bool isDebugCall =
      severity == platform::LogSeverity::debug || severity == platform::LogSeverity::info;
  const LogLevel callLevel = isDebugCall ? LogLevel::debug : LogLevel::error;
  if (threshold == LogLevel::none) {
    return;
  }
  if (threshold != LogLevel::all && threshold != callLevel) {
    return;
  }
  const std::string_view tag = tagOf(severity);

  std::string line;
  {
    const MutexLock lock(prefixMutex_);
    line.reserve(prefix_.size() + tag.size() + message.size() + 8);
    line.append("[").append(prefix_).append("] (");
  }
  line.append(tag).append(") - ").append(message);
  writeUnfiltered(severity, line);
}

void OSLogger::writeUnfiltered(platform::LogSeverity severity, std::string_view line) {
  if (platform::LogSink* sink = platform::services().log) {
    sink->write(severity, kSubsystem, kCategory, line);
  }
}

}  // namespace vemba::checkout
