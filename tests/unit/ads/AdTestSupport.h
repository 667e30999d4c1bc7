// Shared fixture of the ad half's unit tests: a fake platform installed for the test (with the
// process-wide singletons reset) and every VembaLogger message recorded.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ads/core/VembaLogger.h"
#include "unit/FakePlatformTest.h"
#include "vemba/ads/VembaSDK.h"

namespace vemba::tests {

class AdTest : public FakePlatformTest {
 protected:
  AdTest() {
    VembaLogger::setDevelopmentSink([this](std::string_view line) { logs.emplace_back(line); });
  }
  ~AdTest() override { VembaLogger::setDevelopmentSink(nullptr); }

  std::vector<std::string> logs;
};

inline constexpr const char* kIPhoneUserAgent =
    "Mozilla/5.0 (iPhone; CPU iPhone OS 17_4_1 like Mac OS X) AppleWebKit/605.1.15 (KHTML, like "
    "Gecko) Mobile/15E148";

// A bid response whose first bid is usable.
inline std::string bidResponse(const std::string& adm, const std::string& extraBidFields = "",
                               const std::string& extraTopFields = "") {
  return R"({"id":"r1")" + extraTopFields +
         R"(,"seatbid":[{"bid":[{"impid":"1","price":1.5,"adm":")" + adm + "\"" + extraBidFields +
         "}]}]}";
}

}  // namespace vemba::tests
