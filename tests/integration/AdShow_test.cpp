// Both ad formats shown on the real Linux backend (GTK 4 + WebKitGTK under a virtual display) by
// vemba-inspect, against the local exchange on the library's own origin and its real ad pages.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "ExchangeTest.h"
#include "InspectorRun.h"
#include "LocalExchange.h"
#include "LoopbackPorts.h"

namespace vemba::tests {
namespace {

using namespace std::chrono_literals;
using exchange::LocalExchange;
using Strings = std::vector<std::string>;

// Port 18443: the exchange origin the library is built against.
class AdShowTest : public ExchangeTest<18443> {
 protected:
  // Shows an ad of `unit` whose bid carries `bid` (its "page" under /ads/, or its "adm" URL); the
  // run must end with exit status 0.
  static InspectorRun show(const std::string& unit, const nlohmann::json& bid, Strings extra = {}) {
    exchange_->setBehaviour(unit, "bid", bid);
    Strings args{"show", "--ad-unit", unit, "--timeout", "40"};
    args.insert(args.end(), extra.begin(), extra.end());
    InspectorRun run = runInspector(VEMBA_INSPECT_BINARY, args, 60s);
    EXPECT_EQ(run.exitCode, 0) << run.errors.substr(0, 2000);
    // Each show records its impression once, at the exchange's price of 1.5 read as a CPM.
    const auto impressions = run.where("callback", "adDidRecordImpression");
    EXPECT_EQ(impressions.size(), run.where("callback", "adDidShow").size());
    for (const nlohmann::json& line : impressions) {
      EXPECT_EQ(
          line["value"],
          (nlohmann::json{{"micros", 1500}, {"currency", "USD"}, {"precision", "estimated"}}));
    }
    return run;
  }
  static nlohmann::json page(const std::string& path) { return {{"page", path}}; }
};

// A second show() right behind the first is refused (the bid is spent) and said so, before the
// first completes; the first goes on as if alone.
TEST_F(AdShowTest, RewardedPageCloseEarnsTheRewardBeforeTheDismissal) {
  const InspectorRun run = show("itest-rewarded", page("rewarded.html?seconds=1&autoClose=1"),
                                {"--format", "rewarded", "--show-twice", "--muted"});
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidFailToShow", "adDidShow", "adDidEarnReward",
                                  "adDidDismiss"}));
  const auto refused = run.where("callback", "adDidFailToShow");
  ASSERT_EQ(refused.size(), 1U);
  EXPECT_EQ(refused[0]["error"]["domain"], "VembaShowError");
  EXPECT_EQ(refused[0]["error"]["code"], 0);
  const auto reward = run.where("callback", "adDidEarnReward");
  ASSERT_EQ(reward.size(), 1U);
  EXPECT_EQ(reward[0]["reward"], (nlohmann::json{{"amount", 1}, {"type", "reward"}}));
}

// The page's first close while the sheet is over the ad dismisses the sheet; the next one, the ad.
TEST_F(AdShowTest, ShopThisPresentsACheckoutSheetOverTheAd) {
  const InspectorRun run =
      show("itest-shop", page("interstitial.html?auto=openCheckout,close,close&autoDelay=1500"));
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidShow", "screen:presented", "screen:dismissed",
                                  "adDidDismiss"}));
  EXPECT_EQ(pageRequests("/checkout/demo").size(), 1U);
  EXPECT_NE(run.errors.find("Presenting Checkout Sheet for URL: "), std::string::npos);
}

TEST_F(AdShowTest, ARefusedConnectionIsNotRetried) {
  const ClosedPort closed;
  const InspectorRun run =
      show("itest-refused", {{"adm", closed.url("https", "/ads/interstitial.html")}},
           {"--close-after", "3"});
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidShow", "adDidDismiss"}));
  EXPECT_NE(run.errors.find("(Code: -1004)"), std::string::npos) << run.errors;
  EXPECT_EQ(run.errors.find("Retrying"), std::string::npos);
}

// A page flooding its channel (4,000 messages in a second, junk among numbered events, then
// "close"): every valid event reaches the host once and in the page's order (an openURL carrying
// the event's number for even numbers, a click for odd ones) before the dismissal. The frame times
// under a flood are the flood benchmark's business.
TEST_F(AdShowTest, AFloodDeliversEveryValidMessageOnceAndInOrder) {
  const InspectorRun run =
      show("itest-flood", page("flood.html?rate=4000&seconds=1&hugeEvery=0&delay=300"));
  constexpr int kValid = 2000;  // one message in two
  Strings expected{"adDidLoad", "adDidShow"};
  Strings opened;
  for (int n = 0; n < kValid; ++n) {
    expected.push_back(n % 2 == 0 ? "opened" : "adDidClick");
    if (n % 2 == 0) {
      opened.push_back(exchange_->origin() + "/landing/flood?n=" + std::to_string(n));
    }
  }
  expected.push_back("adDidDismiss");
  EXPECT_EQ(run.trace(), expected);
  Strings heard;
  for (const nlohmann::json& line : run.lines) {
    if (line.contains("opened")) {
      heard.push_back(line["opened"].get<std::string>());
    }
  }
  EXPECT_EQ(heard, opened);
}

// Hostile and broken ad pages, each shown by vemba-inspect: whatever the page does, the ad shows,
// the close button (pressed after `closeAfter` seconds) dismisses it, the process exits
// 0 after adDidDismiss, and the host hears only what the page may make it hear.
struct HostilePage {
  const char* name;
  const char* page;  // under /ads/
  double closeAfter;
  Strings trace;  // the host's callbacks and opened URLs, in order
  std::vector<std::pair<std::string, std::size_t>> logCounts = {};  // log text -> exact count
  const char* format = "interstitial";
  std::size_t minPageRequests = 1;  // requests of the ad's page path, redirects and reloads counted
  std::size_t minOpenedLength = 0;  // of each URL opened outside
};

void PrintTo(const HostilePage& page, std::ostream* out) {
  *out << page.name;
}

std::size_t occurrences(const std::string& text, const std::string& needle) {
  std::size_t count = 0;
  for (std::size_t at = text.find(needle); at != std::string::npos;
       at = text.find(needle, at + needle.size())) {
    ++count;
  }
  return count;
}

const Strings kShownAndClosed{"adDidLoad", "adDidShow", "adDidDismiss"};
constexpr const char* kReceived = "vemba received message: vemba";

const HostilePage kHostilePages[] = {
    // Every malformed or unknown message is ignored; the URLs of other schemes that parse reach
    // the host's opener, which decides (the inspector prints them and opens nothing); the bare
    // "click" at the end still counts.
    {"Ignored",
     "interstitial.html?autoDelay=20&auto=dance,Close,dict-empty,dict-noaction,dict-emptyaction,"
     "dict-numberaction,dict-close,dict-click,dict-unknown,dict-caseaction,openURL-nourl,"
     "openURL-numberurl,openURL-unparsable,openCheckout-nourl,openCheckout-unparsable,number,"
     "bool,null,array,openURL-javascript,openURL-file,openURL-data,openURL-custom,click",
     2,
     {"adDidLoad", "adDidShow", "opened", "opened", "opened", "opened", "adDidClick",
      "adDidDismiss"},
     {{kReceived, 24}, {"Presenting Checkout Sheet", 0}, {"Opening URL in Safari: ", 4}}},
    // A 4 MiB string body, then a 4 MiB https URL to open (a URL like any other: opened once,
    // whole), then a click that must still arrive.
    {.name = "Huge",
     .page = "interstitial.html?autoDelay=300&hugeBytes=4194304&auto=huge-string,huge-dict,click",
     .closeAfter = 2.5,
     .trace = {"adDidLoad", "adDidShow", "opened", "adDidClick", "adDidDismiss"},
     .logCounts = {{kReceived, 3}},
     .minOpenedLength = 4194304},
    // Three thousand "close" messages in one burst: one reward, one dismissal. (Those still
    // arriving once the ad is dismissed go unlogged: the run ends at adDidDismiss.)
    {.name = "FloodOfCloses",
     .page = "rewarded.html?autoDelay=300&floodCount=3000&auto=flood-close",
     .closeAfter = 2.5,
     .trace = {"adDidLoad", "adDidShow", "adDidEarnReward", "adDidDismiss"},
     .format = "rewarded"},
    // Endless navigation by script (replace, reload); endless reloads and redirects at the web
    // view's own layer are covered by its tests.
    {.name = "EndlessScriptNavigation",
     .page = "interstitial.html?autoDelay=30&auto=navigate",
     .closeAfter = 2,
     .trace = kShownAndClosed,
     .minPageRequests = 5},
    // A page that never answers: the close button works while it loads.
    {"NeverLoads", "never/interstitial.html", 1.5, kShownAndClosed, {{"Retrying", 0}}},
};

class AdShowHostilePageTest : public AdShowTest,
                              public ::testing::WithParamInterface<HostilePage> {};

TEST_P(AdShowHostilePageTest, ShowsClosesAndTellsTheHostOnlyWhatItMay) {
  const HostilePage& hostile = GetParam();
  const std::string unit = std::string("itest-hostile-") + hostile.name;
  // The close (the button's after closeAfter, or the page's own) arrives whatever the page sends;
  // how promptly the main loop turns under a flood is measured by the reliability benchmarks,
  // not asserted here.
  const InspectorRun run =
      show(unit, page(hostile.page),
           {"--format", hostile.format, "--close-after", std::to_string(hostile.closeAfter)});

  EXPECT_EQ(run.trace(), hostile.trace) << run.errors.substr(0, 2000);
  for (const auto& [text, count] : hostile.logCounts) {
    EXPECT_EQ(occurrences(run.errors, text), count) << text;
  }
  const std::string pagePath =
      "/ads/" + std::string(hostile.page).substr(0, std::string(hostile.page).find('?'));
  EXPECT_GE(pageRequests(pagePath).size(), hostile.minPageRequests) << run.errors.substr(0, 2000);
  for (const nlohmann::json& line : run.lines) {
    if (line.contains("opened")) {
      EXPECT_GE(line["opened"].get_ref<const std::string&>().size(), hostile.minOpenedLength);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pages, AdShowHostilePageTest, ::testing::ValuesIn(kHostilePages),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace vemba::tests
