#include "StderrLogSink.h"

#include <atomic>

namespace vemba::linux_platform {
namespace {

std::atomic<LogFormat> gLogFormat{LogFormat::annotated};

void appendEscaped(std::string& out, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '\n':
        out.append("\\n");
        break;
      case '\r':
        out.append("\\r");
        break;
      default:
        out.push_back(c);
        break;
    }
  }
}

}  // namespace

std::string formatLogLine(LogFormat format, platform::LogSeverity severity,
                          std::string_view subsystem, std::string_view category,
                          std::string_view line) {
  std::string out;
  out.reserve(line.size() + subsystem.size() + category.size() + 16);
  if (format == LogFormat::annotated) {
    out.append(platform::severityName(severity)).append(" [");
    appendEscaped(out, subsystem);
    out.push_back('/');
    appendEscaped(out, category);
    out.append("] ");
  }
  appendEscaped(out, line);
  out.push_back('\n');
  return out;
}

void StderrLogSink::write(platform::LogSeverity severity, std::string_view subsystem,
                          std::string_view category, std::string_view line) {
  const std::string text = formatLogLine(gLogFormat.load(std::memory_order_relaxed), severity,
                                         subsystem, category, line);
  // stdio locks the stream for the call, so the line goes out whole.
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace vemba::linux_platform

namespace vemba {

void setLogFormat(LogFormat format) {
  linux_platform::gLogFormat.store(format, std::memory_order_relaxed);
}

}  // namespace vemba
