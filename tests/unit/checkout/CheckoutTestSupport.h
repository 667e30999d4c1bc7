// Shared fixture of the checkout core's unit tests: a fake platform installed for the test (with
// the checkout singletons reset before and after it) and helpers for the page's messages.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "unit/FakePlatformTest.h"

namespace vemba::checkout::tests {

using vemba::tests::url;

// The page's message envelope, {"name": name, "body": body}, as the page posts it.
inline std::string envelope(std::string_view name, const nlohmann::json& body) {
  return nlohmann::json{{"name", name}, {"body", body}}.dump();
}

// A seed of the fuzz corpus, read whole ("checkout_bridge_fuzzer/pixel_message_every_key").
inline std::string corpusFile(const std::string& name) {
  std::ifstream in(VEMBA_FUZZ_CORPUS_DIR "/" + name, std::ios::binary);
  EXPECT_TRUE(in) << name;
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class CheckoutTest : public vemba::tests::FakePlatformTest {
 protected:
  // The log lines written so far, as "<severity>|<line>".
  std::vector<std::string> logLines() const {
    std::vector<std::string> out;
    for (const auto& line : platform.log.lines) {
      out.push_back(std::string(platform::severityName(line.severity)) + "|" + line.text);
    }
    return out;
  }
};

}  // namespace vemba::checkout::tests
