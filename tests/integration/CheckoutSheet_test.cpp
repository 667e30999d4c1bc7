// The checkout sheet on the real Linux backend (GTK 4 + WebKitGTK under a virtual display),
// presented from a host window by vemba-inspect against the local exchange's demo checkout.
// Every run is its own process, so each test has its own ephemeral web session. Preloading,
// recovery and links are the unit tests' (the kit) and the web view tests' (the backend).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "ExchangeTest.h"
#include "InspectorRun.h"
#include "LocalExchange.h"

namespace vemba::tests {
namespace {

using namespace std::chrono_literals;
using exchange::LocalExchange;
using Strings = std::vector<std::string>;
using ::testing::EndsWith, ::testing::IsSupersetOf;

constexpr const char* kStandardAgent = "VembaCheckoutKit/3.4.0 (8.1;automatic;standard)";

class CheckoutSheetTest : public ExchangeTest<> {
 protected:
  static std::string url(const std::string& pathAndQuery) {
    return exchange_->origin() + pathAndQuery;
  }
  // A checkout run of vemba-inspect with `args`, which must end with exit status 0.
  static InspectorRun inspect(Strings args) {
    args.insert(args.begin(), "checkout");
    // The kit's own debug lines go to the run's standard error: shown when a run fails.
    args.insert(args.end(), {"--timeout", "40", "--linger", "0.2"});
    if (std::find(args.begin(), args.end(), "--log-level") == args.end()) {
      args.insert(args.end(), {"--log-level", "debug"});
    }
    InspectorRun run = runInspector(VEMBA_INSPECT_BINARY, args, 60s);
    EXPECT_EQ(run.exitCode, 0) << run.errors.substr(run.errors.size() -
                                                    std::min<std::size_t>(run.errors.size(), 6000))
                               << "\nheard: " << ::testing::PrintToString(run.trace())
                               << "\nseen by the page: " << ::testing::PrintToString(seenByPage());
    return run;
  }
  static std::string agent(const nlohmann::json& entry) {
    return LocalExchange::header(entry, "User-Agent").value_or("");
  }
  // What the page reported receiving from the sheet ("presented", "instrumentation:<name>").
  static Strings seenByPage() {
    Strings out;
    for (const nlohmann::json& entry : exchange_->log("other")) {
      if (entry.value("path", "") != "/_seen") {
        continue;
      }
      std::string item;
      for (const auto& pair : entry["queryItems"]) {
        item += (item.empty() ? "" : ":") + pair[1].get<std::string>();
      }
      out.push_back(item);
    }
    return out;
  }
};

TEST_F(CheckoutSheetTest, ColdPresentationCompletesWithPixelsAndTheHandshake) {
  const InspectorRun run = inspect({"--url", url("/checkout/cold?auto=pay&autoDelay=150")});
  const Strings trace = run.trace();
  ASSERT_FALSE(trace.empty());
  EXPECT_EQ(trace.front(), "screen:presented");
  EXPECT_EQ(trace.back(), "screen:dismissed");
  const auto completed = run.where("callback", "checkoutDidComplete");
  ASSERT_EQ(completed.size(), 1U);
  EXPECT_FALSE(completed[0]["payload"]["orderDetails"]["id"].get<std::string>().empty());
  EXPECT_GE(run.where("callback", "checkoutDidEmitWebPixelEvent").size(), 6U);

  const auto requests = pageRequests("/checkout/cold");
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_FALSE(LocalExchange::header(requests[0], "Checkout-Purpose"));
  EXPECT_THAT(agent(requests[0]), EndsWith(kStandardAgent));
  EXPECT_THAT(seenByPage(),
              IsSupersetOf({"presented", "instrumentation:checkout_finished_loading"}));
}

// The default checkoutDidFail throws the error back into the kit, from inside WebKit's policy
// signal: the kit stops it there, says so, and dismisses the sheet; the process carries on.
TEST_F(CheckoutSheetTest, AThrowingDefaultDelegateStopsInsideTheKitUnderWebKit) {
  const InspectorRun run =
      inspect({"--url", url("/checkout/status/500"), "--default-delegate", "--log-level", "error"});
  EXPECT_EQ(run.trace(), (Strings{"screen:presented", "screen:dismissed"}));
  EXPECT_NE(run.errors.find("warning [VembaCheckoutKit/PointsOfInterest] [VembaCheckoutKit] "
                            "(Error) - checkoutDidFail threw the CheckoutError it was given"),
            std::string::npos)
      << run.errors;
}

// A page flooding the bridge (4,000 envelopes in a second, ignored junk among numbered pixel
// events, then an envelope that is not JSON, then 20 more pixels): every pixel reaches the host
// once and in the page's order, the bad envelope fails the checkout once, and nothing follows.
TEST_F(CheckoutSheetTest, AFloodDeliversEveryPixelOnceAndInOrderUntilTheBridgeFails) {
  const InspectorRun run = inspect(
      {"--url", url("/flood/checkout.html?rate=4000&seconds=1&hugeEvery=0&tail=20&delay=300"),
       "--recover", "no", "--log-level", "none"});
  constexpr int kValid = 2000;  // one envelope in two
  Strings expected{"screen:presented"};
  expected.insert(expected.end(), kValid, "checkoutDidEmitWebPixelEvent");
  expected.insert(expected.end(),
                  {"checkoutDidFail", "shouldRecoverFromError", "screen:dismissed"});
  EXPECT_EQ(run.trace(), expected);
  Strings ids;
  for (const nlohmann::json& pixel : run.where("callback", "checkoutDidEmitWebPixelEvent")) {
    // The payload is {"<kind>Event": {...}}, custom or standard.
    ids.push_back(pixel["payload"].front().value("id", ""));
  }
  ASSERT_EQ(ids.size(), static_cast<std::size_t>(kValid));
  for (int n = 0; n < kValid; ++n) {
    ASSERT_EQ(ids[static_cast<std::size_t>(n)], "flood-" + std::to_string(n));
  }
}

}  // namespace
}  // namespace vemba::tests
