// Base of the unit test fixtures: the public testing API's FakePlatform installed for the test
// (which also resets the library's process-wide state before and after it), the fake backend
// beneath it, its main queue driven in virtual time, and the URL literal helper.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string_view>

#include "FakePlatformAccess.h"
#include "vemba/Url.h"
#include "vemba/testing/FakePlatform.h"

namespace vemba::tests {

inline Url url(std::string_view text) {
  return Url::parse(text).value();
}

class FakePlatformTest : public ::testing::Test {
 protected:
  // Runs everything due now, including work posted while running.
  void drain() { fakePlatform.runUntilIdle(); }
  void advance(std::chrono::milliseconds delta) { fakePlatform.advance(delta); }

  vemba::testing::FakePlatform fakePlatform;
  fake::FakePlatform& platform = vemba::testing::backendOf(fakePlatform);
};

}  // namespace vemba::tests
