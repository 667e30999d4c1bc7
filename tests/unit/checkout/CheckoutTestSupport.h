// Shared fixture of the checkout core's unit tests: a fake platform installed for the test and
// the checkout singletons reset before and after it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checkout/GlobalsForTesting.h"
#include "unit/FakePlatformTest.h"

namespace vemba::checkout::testing {

using vemba::testing::url;

class CheckoutTest : public vemba::testing::FakePlatformTest {
 protected:
  CheckoutTest() { resetGlobalsForTesting(); }
  ~CheckoutTest() override { resetGlobalsForTesting(); }

  // The log lines written so far, as "<severity>|<line>".
  std::vector<std::string> logLines() const {
    std::vector<std::string> out;
    for (const auto& line : platform.log.lines) {
      out.push_back(std::string(platform::severityName(line.severity)) + "|" + line.text);
    }
    return out;
  }
};

}  // namespace vemba::checkout::testing
