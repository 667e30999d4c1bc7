// Base of the unit test fixtures: a fake platform installed for the test, its main queue driven in
// virtual time, and the URL literal helper.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string_view>

#include "FakePlatform.h"
#include "vemba/Url.h"

namespace vemba::testing {

inline Url url(std::string_view text) {
  return Url::parse(text).value();
}

class FakePlatformTest : public ::testing::Test {
 protected:
  // Runs everything due now, including work posted while running.
  void drain() {
    while (platform.mainQueue.runUntilIdle() > 0) {
    }
  }
  void advance(std::chrono::milliseconds delta) {
    platform.mainQueue.advance(delta);
    drain();
  }

  fake::InstalledFakePlatform platform;
};

}  // namespace vemba::testing
