// The ad screen on the fake user interface: what loading the view builds, the parked URL, the one
// retry, the channel it hears, and the search for the screen to present from.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "AdTestSupport.h"
#include "FakeScreen.h"
#include "FakeView.h"
#include "FakeWebView.h"
#include "ads/formats/UIUtils.h"
#include "ads/formats/VembaWebViewController.h"
#include "platform/UrlErrorCode.h"

namespace vemba::tests {
namespace {

using namespace std::chrono_literals;
using platform::LayoutAnchor;
using Attribute = platform::LayoutAnchor::Attribute;

class RecordingScreenDelegate final : public ads::VembaWebViewControllerDelegate {
 public:
  void webViewControllerDidClose(ads::VembaWebViewController&) override {
    calls.emplace_back("close");
  }
  void webViewControllerDidClick(ads::VembaWebViewController&) override {
    calls.emplace_back("click");
  }
  std::vector<std::string> calls;
};

class AdScreenTest : public AdTest {
 protected:
  // A controller with a delegate, its view loaded after `load(adPage)`.
  std::shared_ptr<ads::VembaWebViewController> shownController() {
    auto controller = ads::VembaWebViewController::create();
    controller->setDelegate(delegate);
    controller->load(adPage);
    controller->screen()->view();
    return controller;
  }
  static fake::FakeWebView& webViewOf(const ads::VembaWebViewController& controller) {
    return dynamic_cast<fake::FakeWebView&>(*controller.webView());
  }
  std::size_t countLog(std::string_view text) const {
    return static_cast<std::size_t>(std::count_if(logs.begin(), logs.end(), [&](const auto& line) {
      return line.find(text) != std::string::npos;
    }));
  }

  const Url adPage = url("https://ads.example.test/creative/7");
  std::shared_ptr<RecordingScreenDelegate> delegate = std::make_shared<RecordingScreenDelegate>();
};

TEST_F(AdScreenTest, ParkedUrlLoadsOnceTheViewLoadsAndStaysParked) {
  auto controller = ads::VembaWebViewController::create();
  controller->load(adPage);
  EXPECT_EQ(controller->webView(), nullptr);
  EXPECT_EQ(countLog("WebViewController loading: "), 0U);

  controller->screen()->view();

  const fake::FakeWebView& webView = webViewOf(*controller);
  ASSERT_EQ(webView.loads.size(), 1U);
  EXPECT_EQ(webView.loads[0].url, adPage);
  EXPECT_EQ(webView.loads[0].cachePolicy, platform::CachePolicy::reloadIgnoringLocalCacheData);
  EXPECT_EQ(webView.loads[0].timeout, 10s);
  EXPECT_TRUE(webView.loads[0].headers.empty());
  EXPECT_EQ(countLog("WebViewController loading: https://ads.example.test/creative/7"), 1U);
  EXPECT_EQ(controller->pendingURL(), adPage);
}

TEST_F(AdScreenTest, ViewHoldsTheWebViewUnderACloseButtonLaidOutFromTheEdges) {
  auto controller = shownController();
  auto& root = dynamic_cast<fake::FakeViewState&>(controller->screen()->view());
  ASSERT_EQ(root.subviewList.size(), 2U);
  EXPECT_EQ(root.subviewList[0], controller->webView());  // back to front: the button is above

  fake::FakeWebView& webView = webViewOf(*controller);
  EXPECT_TRUE(webView.hasNavigationDelegate());
  EXPECT_TRUE(dynamic_cast<fake::FakeUserContentController&>(webView.userContentController())
                  .hasHandler("vemba"));

  // The button's look is its constants; what is checked is where it sits and what it does.
  auto& button = dynamic_cast<fake::FakeButton&>(*root.subviewList[1]);
  EXPECT_FALSE(button.translatesAutoresizingMaskIntoConstraints);

  platform::View* view = &controller->screen()->view();
  const std::vector<platform::LayoutConstraint> expected = {
      {{&button, Attribute::top}, LayoutAnchor{view, Attribute::top, /*safeArea=*/true}, 10.0},
      // The view's own trailing edge, not its safe area's.
      {{&button, Attribute::trailing}, LayoutAnchor{view, Attribute::trailing, false}, -10.0},
      {{&button, Attribute::width}, std::nullopt, 30.0},
      {{&button, Attribute::height}, std::nullopt, 30.0},
  };
  ASSERT_EQ(platform.ui.activations.size(), 1U);  // activated together
  EXPECT_EQ(platform.ui.activations[0], expected);

  button.tap();
  EXPECT_EQ(delegate->calls, std::vector<std::string>{"close"});
}

TEST_F(AdScreenTest, OnlyThreeCodesAreRetriedOnceASecondLater) {
  struct Case {
    int code;
    bool committed;  // failed after the page was committed
    bool retried;
  };
  const Case cases[] = {{-1009, false, true}, {-1003, false, true},  {-1001, false, true},
                        {-1001, true, true},  {-1004, false, false}, {-999, true, false},
                        {102, false, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.code << (c.committed ? " committed" : " provisional"));
    logs.clear();
    auto controller = shownController();
    fake::FakeWebView& webView = webViewOf(*controller);
    webView.startProvisionalNavigation();
    // The domain is not looked at: the codes count in any domain.
    const platform::NavigationError error{"AnyDomain", c.code, std::nullopt};
    if (c.committed) {
      webView.finishNavigation();
      webView.failNavigation(error);
    } else {
      webView.failProvisionalNavigation(error);
    }
    advance(999ms);
    EXPECT_EQ(webView.loads.size(), 1U);
    advance(1ms);
    EXPECT_EQ(webView.loads.size(), c.retried ? 2U : 1U);
    EXPECT_EQ(countLog("Retrying WebView load (Attempt 1/1)..."), c.retried ? 1U : 0U);
    EXPECT_EQ(countLog(c.committed ? "WebView failed load: " : "WebView failed provisional load: "),
              1U);
    EXPECT_TRUE(delegate->calls.empty());  // failures never reach the delegate
  }
}

TEST_F(AdScreenTest, TheOneRetryReloadsTheCurrentUrlElseTheParkedOneAndIsNeverRenewed) {
  auto controller = shownController();
  fake::FakeWebView& webView = webViewOf(*controller);
  const Url redirected = url("https://ads.example.test/creative/7/landing");
  webView.failProvisionalNavigation({"d", -1001, std::nullopt}, redirected);
  advance(1s);
  ASSERT_EQ(webView.loads.size(), 2U);
  EXPECT_EQ(webView.loads[1].url, redirected);
  EXPECT_EQ(webView.loads[1].timeout, 10s);
  // The budget is one for the controller's life, across successful loads.
  webView.startProvisionalNavigation();
  webView.finishNavigation();
  webView.failNavigation({"d", -1009, std::nullopt});
  advance(5s);
  EXPECT_EQ(webView.loads.size(), 2U);
  EXPECT_EQ(controller->retryCount(), 1);

  auto second = shownController();
  fake::FakeWebView& other = webViewOf(*second);
  other.failProvisionalNavigation({"d", -1003, std::nullopt});
  advance(1s);
  ASSERT_EQ(other.loads.size(), 2U);
  EXPECT_EQ(other.loads[1].url, adPage);
}

// A page whose process died is loaded once more, on the next turn; the network retry is a budget
// of its own, and neither spends the other. Nobody is told of a death.
TEST_F(AdScreenTest, ADeadPageIsReloadedOnceAndTheRetryIsABudgetOfItsOwn) {
  const auto memory = platform::WebProcessTermination::exceededMemoryLimit;
  struct Case {
    // -1009: the network is lost (and a second passes); 0: a death; 1: the network is lost and
    // the process dies before the retry, which then loads the page in a new one
    std::vector<int> steps;
    std::size_t loads;
    int retries;
    int reloads;
  };
  const Case cases[] = {{{0}, 2, 0, 1},
                        {{0, 0}, 2, 0, 1},
                        {{0, -1009}, 3, 1, 1},
                        {{-1009, 0}, 3, 1, 1},
                        {{-1009, 0, -1009, 0}, 3, 1, 1},
                        {{1}, 2, 1, 0},
                        {{1, 0}, 3, 1, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.steps));
    auto controller = shownController();
    fake::FakeWebView& webView = webViewOf(*controller);
    for (const int step : c.steps) {
      const std::size_t before = webView.loads.size();
      if (step != 0) {
        webView.failProvisionalNavigation({"d", -1009, std::nullopt});
      }
      if (step >= 0) {
        webView.terminateWebContentProcess(before == 1 ? memory
                                                       : platform::WebProcessTermination{});
        EXPECT_EQ(webView.loads.size(), before);  // never from inside the engine's report
        drain();
      }
      advance(1s);
    }
    EXPECT_EQ(webView.loads.size(), c.loads);
    EXPECT_EQ(webView.loads.back().url, adPage);
    EXPECT_EQ(controller->retryCount(), c.retries);
    EXPECT_EQ(controller->processReloadCount(), c.reloads);
    EXPECT_TRUE(delegate->calls.empty());
  }
  EXPECT_EQ(countLog("terminated: The web content process crashed."), 5U);
  EXPECT_EQ(countLog("terminated: The web content process exceeded its memory limit."), 5U);
}

// The controller hears only its own channel, and logs whatever arrives. What the page may say on
// it is checked through the ads it shows (AdShow_test) and end to end, with everything it may
// not say, by AdShow_test.
TEST_F(AdScreenTest, MessagesOnAnotherChannelAreLoggedAndIgnored) {
  auto controller = shownController();
  auto& content = dynamic_cast<fake::FakeUserContentController&>(
      controller->webView()->userContentController());
  // Such a message needs a registration to arrive at all: it is handed to the handler directly.
  auto& handler = static_cast<platform::ScriptMessageHandler&>(*controller);
  handler.userContentControllerDidReceive(content, {"vembaAds", std::string("close")});
  advance(1s);
  EXPECT_TRUE(delegate->calls.empty());
  EXPECT_EQ(countLog("vemba received message: vembaAds"), 1U);
}

TEST_F(AdScreenTest, NeitherThePendingRetryNorTheHandlerKeepsTheControllerAlive) {
  auto controller = shownController();
  std::weak_ptr<ads::VembaWebViewController> weak = controller;
  // The web view may outlive the controller (in a view tree, for instance).
  const std::shared_ptr<platform::WebView> webView = controller->webView();
  webViewOf(*controller).failProvisionalNavigation({"d", -1009, std::nullopt});
  controller.reset();
  EXPECT_TRUE(weak.expired());
  auto& content = dynamic_cast<fake::FakeUserContentController&>(webView->userContentController());
  content.post("vemba", std::string("close"));  // arrives nowhere, without crashing
  advance(2s);                                  // the retry finds nothing to load
  EXPECT_TRUE(delegate->calls.empty());
  EXPECT_EQ(dynamic_cast<fake::FakeWebView&>(*webView).loads.size(), 1U);
  EXPECT_EQ(countLog("WebViewController loading: "), 1U);
}

class TopScreenTest : public AdTest {
 protected:
  std::shared_ptr<platform::Screen> screen() { return platform.ui.createScreen(); }
  void keyWindow(std::shared_ptr<platform::Screen> root) {
    platform.application.windowList = {std::make_shared<fake::FakeWindow>(false, screen()),
                                       std::make_shared<fake::FakeWindow>(true, std::move(root))};
  }
  void present(const std::shared_ptr<platform::Screen>& from,
               const std::shared_ptr<platform::Screen>& child) {
    from->presentScreen(child, false, nullptr);
  }
};

TEST_F(TopScreenTest, WalksContainersAndPresentedChains) {
  auto plain = screen();
  keyWindow(plain);
  EXPECT_EQ(ads::UIUtils::getTopViewController(), plain);

  auto pushed = screen();
  auto navigation = platform.ui.createNavigationScreen(pushed);
  keyWindow(navigation);
  EXPECT_EQ(ads::UIUtils::getTopViewController(), pushed);

  auto overNavigation = screen();
  present(navigation, overNavigation);
  EXPECT_EQ(ads::UIUtils::getTopViewController(), overNavigation);

  auto first = screen(), second = screen();
  auto tabs = platform.ui.createTabScreen({first, second}, 1);
  keyWindow(tabs);
  EXPECT_EQ(ads::UIUtils::getTopViewController(), second);

  auto chained = screen(), top = screen();
  present(second, chained);
  present(chained, top);
  EXPECT_EQ(ads::UIUtils::getTopViewController(), top);
  // An explicit base is searched from, whatever the key window shows.
  EXPECT_EQ(ads::UIUtils::getTopViewController(first), first);
}

TEST_F(TopScreenTest, KeyWindowComesFromTheFirstActiveWindowSceneElseTheWindowList) {
  auto fromScene = screen(), fromList = screen();
  using State = platform::Scene::ActivationState;
  auto keyIn = [](std::shared_ptr<platform::Screen> root) {
    return std::make_shared<fake::FakeWindow>(true, std::move(root));
  };
  platform.application.windowList = {keyIn(fromList)};

  platform.application.scenes = {{State::foregroundInactive, true, {keyIn(screen())}},
                                 {State::foregroundActive, false, {keyIn(screen())}},
                                 {State::foregroundActive, true, {keyIn(fromScene)}}};
  EXPECT_EQ(ads::UIUtils::getTopViewController(), fromScene);

  // The first active window scene has no key window: the window list decides, not a later scene.
  platform.application.scenes = {
      {State::foregroundActive, true, {std::make_shared<fake::FakeWindow>(false, screen())}},
      {State::foregroundActive, true, {keyIn(screen())}}};
  EXPECT_EQ(ads::UIUtils::getTopViewController(), fromList);

  platform.application.scenes.clear();
  platform.application.windowList = {std::make_shared<fake::FakeWindow>(false, screen())};
  EXPECT_EQ(ads::UIUtils::getTopViewController(), nullptr);
  platform.application.windowList = {std::make_shared<fake::FakeWindow>(true, nullptr)};
  EXPECT_EQ(ads::UIUtils::getTopViewController(), nullptr);
}

}  // namespace
}  // namespace vemba::tests
