#include "checkout/config/OSLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"
#include "checkout/webview/CheckoutState.h"
#include "vemba/checkout/LogLevel.h"

namespace vemba::checkout {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OSLoggerTest : public tests::CheckoutTest {};

struct EmissionCase {
  LogLevel threshold;
  std::vector<std::string> expected;
};

TEST_F(OSLoggerTest, EmissionMatrix) {
  // Levels are not ordered: each threshold passes only its own calls.
  const std::vector<EmissionCase> cases = {
      {LogLevel::all,
       {"debug|[P] (Debug) - d", "info|[P] (Info) - i", "error|[P] (Error) - e",
        "fault|[P] (Fault) - f"}},
      {LogLevel::debug, {"debug|[P] (Debug) - d", "info|[P] (Info) - i"}},
      {LogLevel::error, {"error|[P] (Error) - e", "fault|[P] (Fault) - f"}},
      {LogLevel::none, {}},
  };
  for (const EmissionCase& c : cases) {
    platform.log.lines.clear();
    const OSLogger logger("P", c.threshold);
    logger.debug("d");
    logger.info("i");
    logger.error("e");
    logger.fault("f");
    EXPECT_EQ(logLines(), c.expected) << rawValue(c.threshold);
  }
  // The levels' raw values are exact and case-sensitive.
  EXPECT_EQ(logLevelFrom("all"), LogLevel::all);
  EXPECT_EQ(logLevelFrom("ALL"), std::nullopt);
  EXPECT_EQ(logLevelFrom("Error"), std::nullopt);
  EXPECT_EQ(logLevelFrom(""), std::nullopt);
}

TEST_F(OSLoggerTest, SharedStartsAndIsResetWithTheKitPrefixAndTheConfigurationsDefaultLevel) {
  OSLogger::shared().info("x");
  OSLogger::shared().error("x");
  OSLogger::shared().setPrefix("P");
  OSLogger::shared().setLogLevel(LogLevel::debug);
  resetCheckoutStateForTesting();
  OSLogger::shared().info("y");
  OSLogger::shared().error("y");
  EXPECT_EQ(configuration().logLevel, OSLogger::kDefaultLogLevel);
  EXPECT_THAT(logLines(), ElementsAre("error|[VembaCheckoutKit] (Error) - x",
                                      "error|[VembaCheckoutKit] (Error) - y"));
}

TEST_F(OSLoggerTest, PrefixAndLevelCanBeChangedAndFormatCharactersAreWrittenLiterally) {
  OSLogger logger("A", LogLevel::none);
  logger.fault("hidden");
  logger.setLogLevel(LogLevel::error);
  logger.setPrefix("B");
  logger.fault("shown %@ %d %s %n");
  EXPECT_THAT(logLines(), ElementsAre("fault|[B] (Fault) - shown %@ %d %s %n"));
}

}  // namespace
}  // namespace vemba::checkout
