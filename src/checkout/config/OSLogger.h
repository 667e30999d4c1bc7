// The checkout kit's diagnostic logger: every checkout component writes its diagnostics through
// OSLogger::shared(), which formats "[prefix] (Tag) - message" and hands the line, with its
// severity, to the platform's log sink.
//
// Contract: a reference type, neither copied nor moved. The shared instance is created on first
// use and never destroyed (it sits below the checkout state, which the bridge cannot reach, so it
// is the one piece of the half's process-wide state outside it; the state's reset for tests puts
// it back to its first-use prefix and level). All operations are thread-safe and never fail; a line
// is written only when the threshold lets it through (see LogLevel: the threshold `debug` passes
// debug and info calls, `error` passes error and fault calls).
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "common/ThreadSafety.h"
#include "platform/LogSink.h"
#include "vemba/checkout/LogLevel.h"

namespace vemba::checkout {

class OSLogger {
 public:
  // The kit's reverse-DNS identifier and the category under which its lines are filed.
  static constexpr std::string_view kSubsystem = platform::kCheckoutLogSubsystem;
  static constexpr std::string_view kCategory = "PointsOfInterest";
  static constexpr std::string_view kDefaultPrefix = "VembaCheckoutKit";
  // The configuration's default logLevel; the configuration's change hook copies its level in.
  static constexpr LogLevel kDefaultLogLevel = LogLevel::error;

  // Prefix kDefaultPrefix, threshold kDefaultLogLevel.
  OSLogger();
  OSLogger(std::string prefix, LogLevel logLevel);
  OSLogger(const OSLogger&) = delete;
  OSLogger& operator=(const OSLogger&) = delete;

  // The process-wide instance, created on first use (thread-safe) with the default constructor.
  // It lives for the process; the configuration's change hook keeps its threshold in step.
  static OSLogger& shared();

  // Writes `line` as it is to the platform's log sink under the kit's subsystem and category,
  // whatever any threshold says: for the few lines that must always be written (a contract
  // violation, an event that cannot be encoded). Does nothing when the platform has no sink.
  static void writeUnfiltered(platform::LogSeverity severity, std::string_view line);

  void debug(std::string_view message) const;
  void info(std::string_view message) const;
  void error(std::string_view message) const;
  void fault(std::string_view message) const;

  std::string prefix() const;
  void setPrefix(std::string prefix);
  LogLevel logLevel() const { return logLevel_.load(std::memory_order_relaxed); }
  void setLogLevel(LogLevel level) { logLevel_.store(level, std::memory_order_relaxed); }

 private:
  void write(platform::LogSeverity severity, std::string_view message) const;

  mutable Mutex prefixMutex_;
  std::string prefix_ VEMBA_GUARDED_BY(prefixMutex_);
  std::atomic<LogLevel> logLevel_;
};

}  // namespace vemba::checkout
