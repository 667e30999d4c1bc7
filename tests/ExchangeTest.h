// The fixture of the suites that talk to the local exchange: one exchange for the whole suite,
// trusted by the library's HTTP client and web views through SSL_CERT_FILE. With `NeedsDisplay`
// every test skips when there is no display. An exchange that failed to start fails every test
// with the reason (a failure in the suite's set-up would skip them, and ctest counts a skip as no
// failure).
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "LocalExchange.h"

namespace vemba::tests {

// `Port`: the exchange's port; 0 for any free one.
template <int Port = 0, bool NeedsDisplay = true>
class ExchangeTest : public ::testing::Test {
 protected:
  static bool runnable() { return !NeedsDisplay || std::getenv("DISPLAY") != nullptr; }
  static void SetUpTestSuite() {
    if (!runnable()) {
      return;
    }
    exchange::LocalExchange::Options options;
    options.port = Port;
    try {
      exchange_ = new exchange::LocalExchange(options);
    } catch (const std::exception& failure) {
      startFailure_ = failure.what();
      return;
    }
    setenv("SSL_CERT_FILE", exchange_->caFile().c_str(), 1);
  }
  static void TearDownTestSuite() {
    delete exchange_;
    exchange_ = nullptr;
  }
  void SetUp() override {
    if (!runnable()) {
      GTEST_SKIP() << "needs a display (the test command runs under xvfb-run)";
    }
    ASSERT_NE(exchange_, nullptr) << startFailure_;
    exchange_->clearLog();
  }

  // The page requests the exchange logged for `path` (with `andBelow`, also for the paths under
  // it), oldest first.
  static std::vector<nlohmann::json> pageRequests(const std::string& path, bool andBelow = false) {
    std::vector<nlohmann::json> out;
    for (nlohmann::json& entry : exchange_->log("page")) {
      const std::string requested = entry.value("path", "");
      if (requested == path || (andBelow && requested.rfind(path + "/", 0) == 0)) {
        out.push_back(std::move(entry));
      }
    }
    return out;
  }

  static inline exchange::LocalExchange* exchange_ = nullptr;
  static inline std::string startFailure_;  // why exchange_ is null
};

}  // namespace vemba::tests
