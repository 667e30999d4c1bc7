#include "LogWriter.h"

#include <glib.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "vemba/linux/LinuxPlatform.h"

namespace vemba::inspect {
namespace {

std::string_view levelName(GLogLevelFlags level) {
  if ((level & G_LOG_LEVEL_ERROR) != 0) {
    return "error";
  }
  if ((level & G_LOG_LEVEL_CRITICAL) != 0) {
    return "critical";
  }
  if ((level & G_LOG_LEVEL_WARNING) != 0) {
    return "warning";
  }
  if ((level & G_LOG_LEVEL_MESSAGE) != 0) {
    return "message";
  }
  if ((level & G_LOG_LEVEL_INFO) != 0) {
    return "info";
  }
  return "debug";
}

std::string_view valueOf(const GLogField& field) {
  const char* text = static_cast<const char*>(field.value);
  if (text == nullptr) {
    return {};
  }
  return field.length < 0 ? std::string_view(text)
                          : std::string_view(text, static_cast<std::size_t>(field.length));
}

void appendEscaped(std::string& out, std::string_view text) {
  for (const char c : text) {
    if (c == '\n') {
      out.append("\\n");
    } else if (c == '\r') {
      out.append("\\r");
    } else {
      out.push_back(c);
    }
  }
}

// The line written for one of the library's records, with its final newline.
std::string logLine(std::string_view level, std::string_view domain, std::string_view category,
                    std::string_view message) {
  std::string out;
  out.reserve(level.size() + domain.size() + category.size() + message.size() + 8);
  out.append(level).append(" [").append(domain).append("/").append(category).append("] ");
  appendEscaped(out, message);
  out.push_back('\n');
  return out;
}

GLogWriterOutput writeRecord(GLogLevelFlags level, const GLogField* fields, gsize count,
                             gpointer /*unused*/) {
  std::string_view domain;
  std::string_view category;
  std::string_view message;
  for (gsize i = 0; i < count; ++i) {
    if (std::strcmp(fields[i].key, "GLIB_DOMAIN") == 0) {
      domain = valueOf(fields[i]);
    } else if (std::strcmp(fields[i].key, kLogCategoryField) == 0) {
      category = valueOf(fields[i]);
    } else if (std::strcmp(fields[i].key, "MESSAGE") == 0) {
      message = valueOf(fields[i]);
    }
  }
  if (domain != kLogDomain && domain != kCheckoutLogDomain) {
    return g_log_writer_default(level, fields, count, nullptr);
  }
  const std::string line = logLine(levelName(level), domain, category, message);
  // stdio locks the stream for the call, so the line goes out whole.
  std::fwrite(line.data(), 1, line.size(), stderr);
  return G_LOG_WRITER_HANDLED;
}

}  // namespace

void installLogWriter() {
  g_log_set_writer_func(writeRecord, nullptr, nullptr);
}

}  // namespace vemba::inspect
