// The checkout sheet on the real Linux backend (GTK 4 + WebKitGTK under a virtual display),
// presented from a host window by vemba-inspect against the local exchange's demo checkout.
// Every run is its own process, so each test has its own ephemeral web session.
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
using ::testing::ElementsAre, ::testing::EndsWith, ::testing::IsSupersetOf, ::testing::StartsWith;

constexpr const char* kStandardAgent = "VembaCheckoutKit/3.4.0 (8.1;automatic;standard)";
constexpr const char* kRecoveryAgent =
    "VembaCheckoutKit/3.4.0 (noconnect;automatic;standard_recovery)";

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

TEST_F(CheckoutSheetTest, PreloadIsMarkedAndThePresentationReusesThePage) {
  const InspectorRun run =
      inspect({"--url", url("/checkout/warm?auto=pay&autoDelay=150"), "--preload"});
  EXPECT_EQ(run.where("callback", "checkoutDidComplete").size(), 1U);
  // One marked request; presenting the preloaded page asks the server for nothing more.
  const auto requests = pageRequests("/checkout/warm");
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(LocalExchange::header(requests[0], "Checkout-Purpose"), "prefetch");
}

TEST_F(CheckoutSheetTest, A500RecoversAndCompletesThroughTheThankYouPage) {
  const InspectorRun run =
      inspect({"--url", url("/checkout/fail-once/recover-1?auto=pay&autoDelay=150")});
  EXPECT_EQ(run.trace(), (Strings{"screen:presented", "checkoutDidFail", "shouldRecoverFromError",
                                  "checkoutDidComplete", "screen:dismissed"}));
  const auto failed = run.where("callback", "checkoutDidFail");
  ASSERT_EQ(failed.size(), 1U);
  EXPECT_EQ(failed[0]["checkoutError"]["code"]["httpError"], 500);
  EXPECT_EQ(failed[0]["checkoutError"]["recoverable"], true);

  const auto requests = pageRequests("/checkout/fail-once/recover-1", /*andBelow=*/true);
  ASSERT_GE(requests.size(), 3U);  // the failure, the recovery page, its thank-you page
  EXPECT_THAT(agent(requests[1]), EndsWith(kRecoveryAgent));
  EXPECT_NE(requests.back().value("path", "").find("thank-you"), std::string::npos);
}

TEST_F(CheckoutSheetTest, A404DismissesWithoutRecovery) {
  const InspectorRun run = inspect({"--url", url("/checkout/status/404")});
  EXPECT_EQ(run.trace(), (Strings{"screen:presented", "checkoutDidFail", "shouldRecoverFromError",
                                  "screen:dismissed"}));
  const auto asked = run.where("callback", "shouldRecoverFromError");
  ASSERT_EQ(asked.size(), 1U);
  EXPECT_EQ(asked[0]["answer"], false);

  // The default checkoutDidFail throws the error back into the kit, from inside WebKit's policy
  // signal: the kit stops it there, says so, and dismisses the sheet; the process carries on.
  const InspectorRun defaults =
      inspect({"--url", url("/checkout/status/500"), "--default-delegate", "--log-level", "error"});
  EXPECT_EQ(defaults.trace(), (Strings{"screen:presented", "screen:dismissed"}));
  EXPECT_NE(defaults.errors.find("warning [VembaCheckoutKit/PointsOfInterest] [VembaCheckoutKit] "
                                 "(Error) - checkoutDidFail threw the CheckoutError it was given"),
            std::string::npos)
      << defaults.errors;
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

TEST_F(CheckoutSheetTest, LinksAreReportedAndStayOutOfTheSheet) {
  const InspectorRun run = inspect(
      {"--url", url("/checkout/links?auto=terms,mailto&autoDelay=300"), "--close-after", "3"});
  Strings links;
  for (const nlohmann::json& line : run.where("callback", "checkoutDidClickLink")) {
    links.push_back(line["url"]);
  }
  // The first with "open_externally" removed before reporting.
  EXPECT_THAT(links, ElementsAre(url("/checkout/terms"), StartsWith("mailto:")));
  EXPECT_TRUE(run.where("opened", url("/checkout/terms")).empty());  // the host decides
  EXPECT_TRUE(pageRequests("/checkout/terms").empty());
  EXPECT_EQ(run.where("callback", "checkoutDidCancel").size(), 1U);
}

}  // namespace
}  // namespace vemba::tests
