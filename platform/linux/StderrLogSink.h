// The log sink of the Linux backend: one line on standard error per write.
//
// Contract: thread-safe; each write() is one fwrite of one complete line, so lines of concurrent
// writers never interleave. The text is written as given, never as a format string; a line
// break inside it is written as the two characters "\n" (and a carriage return as "\r") so that
// one write stays one line. The format (annotated with the severity, subsystem and category, or
// plain) is the process-wide choice of vemba::setLogFormat().
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/LogSink.h"
#include "vemba/linux/LinuxPlatform.h"

namespace vemba::linux_platform {

// The complete line written for one write(), with its final newline.
std::string formatLogLine(LogFormat format, platform::LogSeverity severity,
                          std::string_view subsystem, std::string_view category,
                          std::string_view line);

class StderrLogSink final : public platform::LogSink {
 public:
  void write(platform::LogSeverity severity, std::string_view subsystem, std::string_view category,
             std::string_view line) override;
};

}  // namespace vemba::linux_platform
