// The WebKitGTK web view through the seam, against local servers under Xvfb: the load lifecycle
// in the order the core relies on, trust of the SSL_CERT_FILE bundle and nothing else, failures
// and their codes, policy decisions, script messages both ways, what the server sees, ephemeral
// storage. (That the web process ends with the view, InProcessScreens_test shows for twenty
// views.)
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <webkit/webkit.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ExchangeTest.h"
#include "LocalExchange.h"
#include "WebTestSupport.h"
#include "WindowPixels.h"
#include "checkout/bridge/CheckoutBridge.h"
#include "checkout/bridge/InstrumentationPayload.h"
#include "platform/UrlErrorCode.h"

namespace vemba::tests {

using exchange::LocalExchange;
namespace {

using platform::NavigationError;
using ::testing::ElementsAre;
namespace Code = platform::UrlErrorCode;

constexpr std::string_view kPagePath = "/ads/interstitial.html";

class WebViewTest : public ExchangeTest<> {
 protected:
  void SetUp() override {
    ExchangeTest::SetUp();
    if (!IsSkipped() && !HasFatalFailure()) {
      ASSERT_TRUE(displayAvailable()) << "GTK cannot use the display";
    }
  }

  static std::string pageUrl(std::string_view query = "") {
    return exchange_->origin() + std::string(kPagePath) + std::string(query);
  }
  static std::string actionLine(const std::string& url, std::string_view rest = "other target") {
    return "action " + url + " " + std::string(rest);
  }
};

TEST_F(WebViewTest, ShowsATrustedHttpsPageLoadedInTheSeamsOrderFromOneRequest) {
  TestWebView made = makeWebView();
  std::vector<std::optional<Url>> urls;
  std::vector<double> progress;
  const auto urlObservation =
      made.view->observeUrl([&](const std::optional<Url>& url) { urls.push_back(url); });
  const auto progressObservation =
      made.view->observeEstimatedProgress([&](double value) { progress.push_back(value); });
  platform::WebRequest request = requestFor(pageUrl());
  request.headers.emplace_back("Checkout-Purpose", "prefetch");
  request.cachePolicy = platform::CachePolicy::reloadIgnoringLocalCacheData;
  made.view->setBackgroundColor(platform::Color::rgba(0.1, 0.1, 0.1, 1.0));

  ASSERT_TRUE(made.loadAndWait(request));
  runMainLoopFor(std::chrono::milliseconds(200));

  // The first attempt, refused until the bundle vouched for the certificate, stays invisible;
  // the server sees only the reissue, with the request's headers and cache policy.
  EXPECT_THAT(made.delegate->events,
              ElementsAre(actionLine(pageUrl()), "start", "response 200 main", "finish"));
  EXPECT_THAT(urls, ElementsAre(Url::parse(pageUrl())));
  ASSERT_FALSE(progress.empty());
  EXPECT_DOUBLE_EQ(progress.back(), 1.0);
  EXPECT_FALSE(made.view->isLoading());
  EXPECT_EQ(made.view->url(), Url::parse(pageUrl()));
  const std::vector<nlohmann::json> pages = pageRequests(std::string(kPagePath));
  ASSERT_EQ(pages.size(), 1U);
  EXPECT_EQ(LocalExchange::header(pages[0], "Checkout-Purpose"), "prefetch");
  EXPECT_EQ(LocalExchange::header(pages[0], "Cache-Control"), "no-cache");

  // The page's first frames reach the window a while after the load ends (seconds on a busy
  // machine); a window showing only the background compresses to a few kilobytes.
  const std::string path = (std::filesystem::current_path() / "web-view-window.png").string();
  EXPECT_TRUE(runMainLoopUntil([&] {
    return linux_platform::saveWindowPng(made.window.get(), path) &&
           std::filesystem::file_size(path) > 10000U;
  })) << path;
}

// Where a page draws nothing: white under an opaque view (its own colour shows only until the
// first page), the view's own colour under a transparent one.
TEST_F(WebViewTest, APageWithoutABackgroundIsDrawnOnTheCanvasTheViewAsksFor) {
  struct Case {
    const char* what;
    bool opaque;
    platform::Color color;
    guint32 expected;
  };
  const Case cases[] = {
      {"an ad: opaque on black", true, platform::Color::rgba(0, 0, 0, 1), 0xFFFFFFFF},
      {"a checkout: transparent on green", false, platform::Color::rgba(0, 1, 0, 1), 0xFF00FF00}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    TestWebView made = makeWebView();
    made.view->setOpaque(c.opaque);
    made.view->setBackgroundColor(c.color);
    ASSERT_TRUE(made.loadAndWait(requestFor("data:text/html,%3Cp%3Elumen%3C/p%3E")));
    const std::string path = (std::filesystem::current_path() / "web-view-canvas.png").string();
    guint32 pixel = 0;
    EXPECT_TRUE(runMainLoopUntil([&] {
      const WindowPixels drawn = drawnPixels(made.window.get(), path);
      pixel = drawn.width > 0 ? drawn.at(drawn.width / 2, drawn.height() / 2) : 0;
      return pixel == c.expected;
    })) << std::hex
        << pixel;
  }
}

// Each failure reaches the core once, with the code it reads. The time-out covers the document
// request only (whether or not the engine has started it): an image that never answers fails
// nothing.
TEST_F(WebViewTest, FailsWithTheCodesTheCoreReadsAndOnlyThen) {
  const LocalExchange stranger;  // its own authority, which nothing trusts
  const std::string never = exchange_->origin() + "/checkout/never";
  const std::string loop = exchange_->origin() + "/ads/redirect-loop/interstitial.html";
  const std::string untrusted = stranger.origin() + std::string(kPagePath);
  const std::string stalledImage = exchange_->origin() + "/checkout/hang/resource";
  const auto failed = [](int code) { return "fail-provisional URLError " + std::to_string(code); };
  {
    TestWebView fresh = makeWebView();  // its web process is not running yet
    ASSERT_TRUE(fresh.loadAndWait(requestFor(never, std::chrono::milliseconds(1))));
    runMainLoopFor(std::chrono::milliseconds(1500));  // the process is up: nothing more arrives
    EXPECT_THAT(fresh.delegate->events, ElementsAre(failed(Code::timedOut)));
  }
  TestWebView made = makeWebView();
  auto& events = made.delegate->events;
  const auto loaded = std::chrono::steady_clock::now();
  ASSERT_TRUE(made.loadAndWait(requestFor(never, std::chrono::seconds(1))));
  EXPECT_GE(std::chrono::steady_clock::now() - loaded, std::chrono::seconds(1));
  EXPECT_THAT(events, ElementsAre(actionLine(never), "start", failed(Code::timedOut)));

  events.clear();
  ASSERT_TRUE(made.loadAndWait(requestFor(loop)));
  EXPECT_EQ(std::count(events.begin(), events.end(), "start"), 1);
  EXPECT_EQ(events.back(), failed(Code::httpTooManyRedirects));

  events.clear();
  ASSERT_TRUE(made.loadAndWait(requestFor(untrusted)));
  EXPECT_THAT(events, ElementsAre(actionLine(untrusted), "start",
                                  failed(Code::serverCertificateHasUnknownRoot)));
  EXPECT_TRUE(stranger.log("page").empty());

  // The document answers; an image of it never does. The load never ends, and does not fail.
  events.clear();
  made.view->load(requestFor(stalledImage, std::chrono::seconds(1)));
  ASSERT_TRUE(runMainLoopUntil([&] { return events.size() >= 3; }));
  runMainLoopFor(std::chrono::seconds(2));
  EXPECT_THAT(events, ElementsAre(actionLine(stalledImage), "start", "response 200 main"));
  EXPECT_TRUE(made.view->isLoading());
}

TEST_F(WebViewTest, AnsweredPolicyDecisionsStopTheNavigation) {
  TestWebView made = makeWebView();
  ASSERT_TRUE(made.loadAndWait(requestFor(pageUrl())));
  made.delegate->events.clear();

  // A script's click on a link is a link activation; a target-less one opens no frame here.
  const std::string other = exchange_->origin() + "/ads/rewarded.html";
  made.delegate->cancelAction = [](const platform::NavigationAction& action) {
    return action.navigationType == platform::NavigationType::linkActivated;
  };
  made.view->evaluateJavaScript("const a = document.createElement('a'); a.href = '" + other +
                                "'; a.target = '_blank'; document.body.appendChild(a); a.click();"
                                "const b = document.createElement('a'); b.href = '" +
                                other + "'; document.body.appendChild(b); b.click();");
  ASSERT_TRUE(runMainLoopUntil([&] { return made.delegate->events.size() >= 2; }));
  runMainLoopFor(std::chrono::milliseconds(500));
  EXPECT_THAT(made.delegate->events,
              ElementsAre(actionLine(other, "link no-target"), actionLine(other, "link target")));
  EXPECT_EQ(made.view->url(), Url::parse(pageUrl()));

  // A main-document 404 reaches the response decision; cancelling it interrupts the load.
  made.delegate->events.clear();
  made.delegate->cancelResponse = [](const platform::NavigationResponse& response) {
    return response.statusCode >= 400;
  };
  const std::string missing = exchange_->origin() + "/no-such-page";
  ASSERT_TRUE(made.loadAndWait(requestFor(missing)));
  EXPECT_THAT(made.delegate->events, ElementsAre(actionLine(missing), "start", "response 404 main",
                                                 "fail-provisional WebKitErrorDomain 102"));
}

TEST_F(WebViewTest, CarriesScriptMessagesBothWays) {
  TestWebView made = makeWebView();
  auto handler = std::make_shared<RecordingMessageHandler>();
  made.controller->add(handler, "vemba");
  made.view->load(requestFor(pageUrl("?auto=click&autoDelay=10")));
  ASSERT_TRUE(runMainLoopUntil([&] { return !handler->messages.empty(); }));
  EXPECT_EQ(handler->messages[0], (platform::ScriptMessage{"vemba", std::string("click")}));

  // A removed channel is gone from the live page: posting to it throws there.
  auto probe = std::make_shared<RecordingMessageHandler>();
  made.controller->add(probe, "probe");
  made.controller->removeScriptMessageHandler("vemba");
  handler->messages.clear();
  made.view->evaluateJavaScript(
      "try { window.webkit.messageHandlers.vemba.postMessage('late'); "
      "window.webkit.messageHandlers.probe.postMessage('posted'); }"
      "catch (e) { window.webkit.messageHandlers.probe.postMessage('threw'); }");
  ASSERT_TRUE(runMainLoopUntil([&] { return !probe->messages.empty(); }));
  EXPECT_EQ(
      probe->messages[0].body,
      (std::variant<std::string, platform::ScriptMessage::NonStringBody>(std::string("threw"))));
  EXPECT_TRUE(handler->messages.empty());
}

// What the kit evaluates in a page carries its values as the same values, whatever their text:
// the page's dispatcher receives each hostile payload intact, and nothing else runs.
TEST_F(WebViewTest, KitMessagesReachThePageIntactWhateverTheirValues) {
  TestWebView made = makeWebView();
  auto received = std::make_shared<RecordingMessageHandler>();
  made.controller->add(received, "probe");
  ASSERT_TRUE(made.loadAndWait(requestFor(pageUrl())));
  made.view->evaluateJavaScript(
      "window.MobileCheckoutSdk = {dispatchMessage: function (name, body) {"
      "  window.webkit.messageHandlers.probe.postMessage(name + ' ' + JSON.stringify(body)); }};"
      "window.injected = function () { window.webkit.messageHandlers.probe.postMessage('ran'); };");
  const std::string lineSeparator = "\xE2\x80\xA8";
  const std::string paragraphSeparator = "\xE2\x80\xA9";
  const std::string mebibyte(std::size_t{1} << 20, 'm');
  const checkout::InstrumentationPayload payloads[] = {
      {"say \"hi\" it's", -1, checkout::InstrumentationType::histogram, {{"path", "C:\\kit\\"}}},
      {"</script><script>injected()</script>",
       0,
       checkout::InstrumentationType::histogram,
       {{"q'\"\\", "');injected();//"}, {"\"});injected();//", "`${injected()}`"}}},
      {"a" + lineSeparator + "b" + paragraphSeparator + "c",
       1,
       checkout::InstrumentationType::histogram,
       {{std::string("nul\0inside", 10), lineSeparator + "');injected();//"}}},
      {mebibyte, 2, checkout::InstrumentationType::histogram, {{"big", mebibyte}}},
  };
  const auto& messages = received->messages;
  for (const checkout::InstrumentationPayload& payload : payloads) {
    SCOPED_TRACE(payload.name.substr(0, 40));
    const std::size_t before = messages.size();
    checkout::CheckoutBridge::instrument(*made.view, payload);
    ASSERT_TRUE(runMainLoopUntil([&] { return messages.size() > before; }));
    const std::string* text = std::get_if<std::string>(&messages[before].body);
    ASSERT_NE(text, nullptr);
    const std::string head = "instrumentation ";
    ASSERT_EQ(text->substr(0, head.size()), head);
    const auto decoded = checkout::decodeInstrumentationSdkToWebEvent(text->substr(head.size()));
    ASSERT_TRUE(decoded.hasValue()) << text->substr(0, 200);
    EXPECT_EQ(decoded->detail, payload);
  }
  // A value that is not UTF-8 (a lone surrogate's bytes) is never sent, so it cannot break out.
  checkout::CheckoutBridge::instrument(
      *made.view, {"lone \xED\xA0\x80", 3, checkout::InstrumentationType::histogram, {}});
  made.view->evaluateJavaScript("window.webkit.messageHandlers.probe.postMessage('end');");
  ASSERT_TRUE(runMainLoopUntil([&] { return messages.size() > std::size(payloads); }));
  // One message per payload, then 'end': nothing else was sent, and no injected call ran.
  EXPECT_EQ(messages.size(), std::size(payloads) + 1);
  EXPECT_EQ(
      messages.back().body,
      (std::variant<std::string, platform::ScriptMessage::NonStringBody>(std::string("end"))));
}

TEST_F(WebViewTest, ADelegateMayDropTheViewInItsCallback) {
  TestWebView made = makeWebView();
  std::weak_ptr<platform::WebView> weak = made.view;
  made.delegate->onEnd = [&] {
    made.window.reset();
    made.view.reset();
  };
  ASSERT_TRUE(made.loadAndWait(requestFor(pageUrl())));
  runMainLoopFor(std::chrono::milliseconds(200));
  EXPECT_TRUE(weak.expired());
}

TEST_F(WebViewTest, EphemeralViewsShareAndKeepNothing) {
  const auto store = [](TestWebView& made, const std::string& script) {
    auto handler = std::make_shared<RecordingMessageHandler>();
    made.controller->add(handler, "probe");
    EXPECT_TRUE(made.loadAndWait(requestFor(pageUrl())));
    made.view->evaluateJavaScript(script);
    EXPECT_TRUE(runMainLoopUntil([&] { return !handler->messages.empty(); }));
    return handler->messages.empty() ? std::string()
                                     : std::get<std::string>(handler->messages[0].body);
  };
  const std::string read =
      "window.webkit.messageHandlers.probe.postMessage("
      "(localStorage.getItem('k') || '-') + ' ' + (document.cookie || '-'));";
  {
    TestWebView first = makeWebView();
    EXPECT_EQ(store(first,
                    "localStorage.setItem('k', 'v'); document.cookie = 'c=1; max-age=600';" + read),
              "v c=1");
  }
  TestWebView second = makeWebView();
  EXPECT_EQ(store(second, read), "- -");
}

TEST_F(WebViewTest, SurvivesAPageThatNeverStopsNavigating) {
  TestWebView made = makeWebView();
  // Every load of this page reloads it 1 ms after its script runs, forever.
  made.view->load(requestFor(pageUrl("?auto=reload&autoDelay=1")));
  ASSERT_TRUE(runMainLoopUntil([&] { return made.delegate->ends >= 5; }));
  // Each navigation starts, then ends once, before the next starts: at most one is in flight
  // when the view goes.
  const auto& events = made.delegate->events;
  const auto starts = static_cast<std::size_t>(std::count(events.begin(), events.end(), "start"));
  EXPECT_GE(starts, made.delegate->ends) << ::testing::PrintToString(events);
  EXPECT_LE(starts, made.delegate->ends + 1) << ::testing::PrintToString(events);
}

}  // namespace
}  // namespace vemba::tests
