// Log lines on standard error.
#include "StderrLogSink.h"

#include <gtest/gtest.h>

namespace vemba::linux_platform {
namespace {

using platform::LogSeverity;

TEST(StderrLogSinkTest, FormatsKeepTheSeverityOrOnlyTheText) {
  EXPECT_EQ(formatLogLine(LogFormat::annotated, LogSeverity::error, "com.vemba", "checkout",
                          "[CheckoutKit] (error) - boom"),
            "error [com.vemba/checkout] [CheckoutKit] (error) - boom\n");
  EXPECT_EQ(formatLogLine(LogFormat::plain, LogSeverity::fault, "s", "c", "just this"),
            "just this\n");
}

TEST(StderrLogSinkTest, OneWriteIsOneLineAndNeverAFormatString) {
  EXPECT_EQ(formatLogLine(LogFormat::plain, LogSeverity::info, "s", "c", "a\nb\r\nc"),
            "a\\nb\\r\\nc\n");
  EXPECT_EQ(formatLogLine(LogFormat::plain, LogSeverity::info, "s", "c", "%s %n %d%%"),
            "%s %n %d%%\n");
  EXPECT_EQ(formatLogLine(LogFormat::plain, LogSeverity::info, "s", "c", ""), "\n");
}

TEST(StderrLogSinkTest, WritesToStandardErrorInTheChosenFormat) {
  StderrLogSink sink;
  ::testing::internal::CaptureStderr();
  sink.write(LogSeverity::error, "sub", "cat", "first %s");
  setLogFormat(LogFormat::plain);
  sink.write(LogSeverity::info, "sub", "cat", "second");
  setLogFormat(LogFormat::annotated);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "error [sub/cat] first %s\nsecond\n");
}

}  // namespace
}  // namespace vemba::linux_platform
