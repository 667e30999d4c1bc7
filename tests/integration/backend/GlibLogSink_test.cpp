// The Linux log sink: the records it gives GLib's structured log, as the process's writer
// receives them.
#include "GlibLogSink.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <map>
#include <span>
#include <string>
#include <vector>

#include "vemba/linux/LinuxPlatform.h"

namespace vemba::linux_platform {
namespace {

using platform::LogSeverity;
using Record = std::map<std::string, std::string>;  // the fields, and the level under "level"

std::vector<Record> gRecords;

GLogWriterOutput keep(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer) {
  Record& record =
      gRecords.emplace_back(Record{{"level", std::to_string(level & G_LOG_LEVEL_MASK)}});
  for (const GLogField& field : std::span<const GLogField>(fields, count)) {
    const char* value = static_cast<const char*>(field.value);
    record[field.key] = field.length < 0 ? value : std::string(value, std::size_t(field.length));
  }
  return G_LOG_WRITER_HANDLED;
}

TEST(GlibLogSinkTest, EachWriteIsOneRecordInItsHalfsDomainAtItsLevel) {
  // GLib takes one writer per process: this is the binary's only one.
  [[maybe_unused]] static const bool installed =
      (g_log_set_writer_func(keep, nullptr, nullptr), true);
  const std::string checkout(platform::kCheckoutLogSubsystem);
  const std::string library(platform::kLibraryLogSubsystem);
  const struct {
    LogSeverity severity;
    std::string subsystem, domain;
    GLogLevelFlags level;
    std::string priority;
  } cases[] = {
      {LogSeverity::debug, checkout, kCheckoutLogDomain, G_LOG_LEVEL_DEBUG, "7"},
      {LogSeverity::info, library, kLogDomain, G_LOG_LEVEL_INFO, "6"},
      {LogSeverity::error, checkout, kCheckoutLogDomain, G_LOG_LEVEL_WARNING, "4"},
      {LogSeverity::fault, library, kLogDomain, G_LOG_LEVEL_CRITICAL, "4"},
      // Any subsystem but the checkout half's is the library's own.
      {LogSeverity::error, "com.example.host", kLogDomain, G_LOG_LEVEL_WARNING, "4"},
  };
  // Format directives and line breaks reach the writer as they are.
  const std::string text = "100% done %s %n %d%% \"q\"\nnext line";
  for (const auto& c : cases) {
    gRecords.clear();
    GlibLogSink().write(c.severity, c.subsystem, "category-" + c.priority, text);
    EXPECT_EQ(gRecords, (std::vector<Record>{{{"level", std::to_string(c.level)},
                                              {"MESSAGE", text},
                                              {"GLIB_DOMAIN", c.domain},
                                              {"PRIORITY", c.priority},
                                              {kLogSubsystemField, c.subsystem},
                                              {kLogCategoryField, "category-" + c.priority}}}))
        << c.subsystem << " " << platform::severityName(c.severity);
  }
}

}  // namespace
}  // namespace vemba::linux_platform
