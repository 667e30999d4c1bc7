// Both ad formats shown on the real Linux backend (GTK 4 + WebKitGTK under a virtual display) by
// vemba-inspect, against the local exchange on the library's own origin and its real ad pages.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "InspectorRun.h"
#include "LocalExchange.h"

namespace vemba::testing {
namespace {

using namespace std::chrono_literals;
using exchange::LocalExchange;
using Strings = std::vector<std::string>;

// A loopback port with nothing listening on it.
int closedPort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return ntohs(address.sin_port);
}

class AdShowTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (std::getenv("DISPLAY") == nullptr) {
      return;
    }
    LocalExchange::Options options;
    options.port = 18443;  // the origin the library is built against
    exchange_ = new LocalExchange(options);
    setenv("SSL_CERT_FILE", exchange_->caFile().c_str(), 1);
  }
  static void TearDownTestSuite() {
    delete exchange_;
    exchange_ = nullptr;
  }
  void SetUp() override {
    if (exchange_ == nullptr) {
      GTEST_SKIP() << "needs a display (the test command runs under xvfb-run)";
    }
    exchange_->clearLog();
  }

  // Shows an ad of `unit` whose bid serves `page` (under /ads/), with `extra` options.
  static InspectorRun show(const std::string& unit, const std::string& page, Strings extra = {}) {
    exchange_->setBehaviour(unit, "bid", {{"page", page}});
    Strings args{"show", "--ad-unit", unit, "--timeout", "40"};
    args.insert(args.end(), extra.begin(), extra.end());
    return runInspector(VEMBA_INSPECT_BINARY, args, 60s);
  }
  static std::size_t requestsFor(const std::string& path) {
    std::size_t count = 0;
    for (const nlohmann::json& entry : exchange_->log("page")) {
      count += entry.value("path", "") == path ? 1U : 0U;
    }
    return count;
  }

  static inline LocalExchange* exchange_ = nullptr;
};

TEST_F(AdShowTest, InterstitialShowsIsBilledAndIsDismissedByItsCloseButton) {
  const InspectorRun run = show("itest-interstitial", "interstitial.html", {"--close-after", "1"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidShow", "adDidDismiss"}));
  EXPECT_EQ(exchange_->log("billing").size(), 1U);
}

TEST_F(AdShowTest, RewardedPageCloseEarnsTheRewardBeforeTheDismissal) {
  const InspectorRun run =
      show("itest-rewarded", "rewarded.html?seconds=1&autoClose=1", {"--format", "rewarded"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidShow", "adDidEarnReward", "adDidDismiss"}));
  const auto reward = run.where("callback", "adDidEarnReward");
  ASSERT_EQ(reward.size(), 1U);
  EXPECT_EQ(reward[0]["reward"], (nlohmann::json{{"amount", 1}, {"type", "reward"}}));
}

TEST_F(AdShowTest, AClickThroughIsReportedAndOpenedOutside) {
  const InspectorRun run =
      show("itest-click", "interstitial.html?auto=clickthrough,close&autoDelay=400");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.trace(),
            (Strings{"adDidLoad", "adDidShow", "adDidClick", "opened", "adDidDismiss"}));
  EXPECT_EQ(
      run.where("opened", exchange_->origin() + "/landing/interstitial?from=interstitial").size(),
      1U);
}

TEST_F(AdShowTest, ShopThisPresentsACheckoutSheetOverTheAd) {
  const InspectorRun run = show("itest-shop", "interstitial.html?auto=openCheckout&autoDelay=400",
                                {"--close-after", "4"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidShow", "screen:presented", "adDidDismiss"}));
  EXPECT_EQ(requestsFor("/checkout/demo"), 1U);
  EXPECT_NE(run.errors.find("Presenting Checkout Sheet for URL: "), std::string::npos);
}

TEST_F(AdShowTest, APageThatTimesOutIsRetriedOnceASecondLater) {
  // The first request of this key answers after 12 s: past the 10 s request time-out (-1001).
  const std::string path = "/ads/slow-first/itest-retry/interstitial.html";
  const InspectorRun run =
      show("itest-retry", "slow-first/itest-retry/interstitial.html", {"--close-after", "13"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.errors.find("(Code: -1001)"), std::string::npos) << run.errors;
  EXPECT_NE(run.errors.find("Retrying WebView load (Attempt 1/1)..."), std::string::npos);
  EXPECT_EQ(requestsFor(path), 2U);
}

TEST_F(AdShowTest, ARefusedConnectionIsNotRetried) {
  exchange_->setBehaviour(
      "itest-refused", "bid",
      {{"adm", "https://127.0.0.1:" + std::to_string(closedPort()) + "/ads/interstitial.html"}});
  const InspectorRun run = runInspector(
      VEMBA_INSPECT_BINARY,
      {"show", "--ad-unit", "itest-refused", "--close-after", "3", "--timeout", "40"}, 60s);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.trace(), (Strings{"adDidLoad", "adDidShow", "adDidDismiss"}));
  EXPECT_NE(run.errors.find("(Code: -1004)"), std::string::npos) << run.errors;
  EXPECT_EQ(run.errors.find("Retrying"), std::string::npos);
}

}  // namespace
}  // namespace vemba::testing
