#include "checkout/webview/CheckoutWebView.h"

#include <gtest/gtest.h>

#include "CheckoutScreenTestSupport.h"
#include "checkout/bridge/InstrumentationPayload.h"
#include "platform/UrlErrorCode.h"
#include "unit/CommaDecimalLocale.h"
#include "vemba/checkout/Checkout.h"

namespace vemba::checkout {
namespace {

using std::chrono::milliseconds;
using tests::dispatched;
using tests::envelope;
using tests::url;
using Policy = platform::NavigationActionPolicy;
using ResponsePolicy = platform::NavigationResponsePolicy;

class RecordingLogger : public Logger {
 public:
  void log(const std::string& message) override { lines.push_back(message); }
  void clearLogs() override { lines.clear(); }
  std::vector<std::string> lines;
};

class CheckoutWebViewTest : public tests::CheckoutScreenTest {
 protected:
  std::shared_ptr<CheckoutWebView> make(bool recovery = false) {
    auto view = state().cache.forCheckout(checkout, recovery, std::nullopt);
    view->setViewDelegate(delegate);
    return view;
  }
  std::vector<InstrumentationPayload> instrumentation(const fake::FakeWebView& webView) {
    std::vector<InstrumentationPayload> out;
    for (const std::string& argument : dispatched(webView)) {
      constexpr std::string_view kPrefix = "'instrumentation', ";
      if (argument.rfind(kPrefix, 0) == 0) {
        out.push_back(
            decodeInstrumentationSdkToWebEvent(argument.substr(kPrefix.size())).value().detail);
      }
    }
    return out;
  }

  std::shared_ptr<tests::RecordingDelegate> delegate = std::make_shared<tests::RecordingDelegate>();
};

TEST_F(CheckoutWebViewTest, StandardAndRecoveryViewsAreBuiltDifferently) {
  constexpr Color kBackground = Color::rgba(0.1, 0.2, 0.3, 1.0);
  configure([&](Configuration& c) {
    c.colorScheme = UserAgent::ColorScheme::dark;
    c.platform = Platform::reactNative;
    c.backgroundColor = kBackground;
  });
  const auto standard =
      CheckoutWebView::create(platform.ui, false, MetaData::EntryPoint::acceleratedCheckouts);
  const auto recovery = CheckoutWebView::create(platform.ui, true, std::nullopt);

  const fake::FakeWebView& s = fakeOf(*standard);
  EXPECT_EQ(s.configuration.applicationNameForUserAgent,
            "VembaCheckoutKit/3.4.0 (8.1;dark;standard) ReactNative AcceleratedCheckouts");
  EXPECT_FALSE(s.configuration.nonPersistentDataStore);
  EXPECT_TRUE(hasBridge(*standard));
  EXPECT_TRUE(standard->isBridgeAttached());
  EXPECT_EQ(s.liveUrlObservers(), 0U);
  EXPECT_EQ(s.backgroundColor, kBackground);
  EXPECT_EQ(s.underPageBackgroundColor, kBackground);

  const fake::FakeWebView& r = fakeOf(*recovery);
  EXPECT_EQ(r.configuration.applicationNameForUserAgent,
            "VembaCheckoutKit/3.4.0 (noconnect;dark;standard_recovery) ReactNative");
  EXPECT_TRUE(r.configuration.nonPersistentDataStore);
  EXPECT_FALSE(hasBridge(*recovery));
  EXPECT_FALSE(recovery->isBridgeAttached());
  EXPECT_EQ(r.liveUrlObservers(), 1U);
}

TEST_F(CheckoutWebViewTest, OnlyAPreloadOfANormalViewWithPreloadingOnIsMarkedAsPrefetch) {
  struct Case {
    bool isPreload;
    bool recovery;
    bool preloadingEnabled;
    bool marked;
  };
  for (const Case c : {Case{true, false, true, true}, Case{false, false, true, false},
                       Case{true, true, true, false}, Case{true, false, false, false}}) {
    SCOPED_TRACE(::testing::Message() << c.isPreload << c.recovery << c.preloadingEnabled);
    configure([&](Configuration& config) { config.preloading.setEnabled(c.preloadingEnabled); });
    const auto view = CheckoutWebView::create(platform.ui, c.recovery, std::nullopt);
    view->load(checkout, c.isPreload);
    const fake::FakeWebView& webView = fakeOf(*view);
    ASSERT_EQ(webView.loads.size(), 1U);
    const platform::WebRequest& request = webView.loads[0];
    EXPECT_EQ(request.url, checkout);
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(request.cachePolicy, platform::CachePolicy::useProtocolCachePolicy);
    const platform::HttpHeaders prefetch = {{"Checkout-Purpose", "prefetch"}};
    EXPECT_EQ(request.headers, c.marked ? prefetch : platform::HttpHeaders());
    EXPECT_EQ(view->isPreloadRequest(), c.marked);
  }
}

TEST_F(CheckoutWebViewTest, ExternalAndDeepLinksAreReportedWithoutTheirMarkAndCancelled) {
  using Type = platform::NavigationType;
  struct Case {
    std::optional<const char*> link;
    Type type;
    bool hasTargetFrame;
    Policy policy;
    std::optional<std::string> reported;
  };
  const Case cases[] = {
      {std::nullopt, Type::linkActivated, false, Policy::allow, std::nullopt},
      {"https://shop.example/terms", Type::linkActivated, true, Policy::allow, std::nullopt},
      {"https://shop.example/terms", Type::linkActivated, false, Policy::cancel,
       "https://shop.example/terms"},
      {"https://shop.example/terms", Type::other, false, Policy::allow, std::nullopt},
      {"https://help.example/?open_externally=TRUE", Type::other, true, Policy::cancel,
       "https://help.example/"},
      {"https://help.example/?q=1&open_externally=1", Type::formSubmitted, true, Policy::cancel,
       "https://help.example/?q=1"},
      {"mailto:help@shop.example", Type::other, true, Policy::cancel, "mailto:help@shop.example"},
      {"bankapp://pay?open_externally=true", Type::other, true, Policy::cancel, "bankapp://pay"},
      {"about:blank", Type::other, true, Policy::allow, std::nullopt},
  };
  const auto view = make();
  fake::FakeWebView& webView = fakeOf(*view);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.link.value_or("(none)"));
    delegate->calls.clear();
    const platform::NavigationAction action{
        c.link ? std::optional<Url>(url(*c.link)) : std::nullopt, c.type, c.hasTargetFrame};
    EXPECT_EQ(webView.decidePolicyForNavigationAction(action), c.policy);
    EXPECT_EQ(delegate->calls, c.reported ? std::vector<std::string>{"link:" + *c.reported}
                                          : std::vector<std::string>{});
  }
  EXPECT_EQ(countLog("External or deep link clicked: mailto:help@shop.example - request "
                     "intercepted"),
            1U);

  view->setViewDelegate({});  // without a delegate the link is still intercepted
  EXPECT_EQ(webView.decidePolicyForNavigationAction({url("tel:+15550100"), Type::other, true}),
            Policy::cancel);
}

TEST_F(CheckoutWebViewTest, OnlyAnErrorStatusOfTheCheckoutDocumentFailsTheLoad) {
  struct Case {
    const char* name;
    bool loaded;  // the view has the checkout URL
    std::optional<const char*> responseUrl;
    std::optional<long> status;
    ResponsePolicy policy;
  };
  const Case cases[] = {
      {"document 404", true, "https://shop.example/checkouts/c1", 404, ResponsePolicy::cancel},
      {"sub-resource 500", true, "https://cdn.example/app.js", 500, ResponsePolicy::allow},
      {"document 399", true, "https://shop.example/checkouts/c1", 399, ResponsePolicy::allow},
      {"not HTTP", true, "https://shop.example/checkouts/c1", std::nullopt, ResponsePolicy::allow},
      {"both URLs absent", false, std::nullopt, 500, ResponsePolicy::cancel},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    resetCheckoutState();
    delegate->calls.clear();
    const auto view = make();
    if (c.loaded) {
      view->load(checkout);
    }
    const platform::NavigationResponse response{
        c.responseUrl ? std::optional<Url>(url(*c.responseUrl)) : std::nullopt, c.status, true};
    const bool failed = c.policy == ResponsePolicy::cancel;
    EXPECT_EQ(fakeOf(*view).decidePolicyForNavigationResponse(response), c.policy);
    EXPECT_EQ(delegate->calls.size(), failed ? 1U : 0U);
    // A failure drops the page from the cache and disconnects it.
    EXPECT_EQ(hasBridge(*view), !failed);
    EXPECT_EQ(obtain() == view, !failed);
  }
  EXPECT_EQ(countLog("Handling response for URL: unknown URL, status code: 500"), 1U);

  // The same server error is final in a recovery view.
  delegate->calls.clear();
  const auto recovery = make(/*recovery=*/true);
  recovery->load(checkout);
  fakeOf(*recovery).decidePolicyForNavigationResponse({checkout, 503, true});
  EXPECT_EQ(delegate->calls, std::vector<std::string>{"fail:2:final"});
}

TEST_F(CheckoutWebViewTest, LoadTimeIsMeasuredOnlyFromAProvisionalStart) {
  const vemba::tests::CommaDecimalLocale comma;  // the numbers keep their point
  auto logger = std::make_shared<RecordingLogger>();
  configure([&](Configuration& c) { c.logger = logger; });
  const auto view = make();
  fake::FakeWebView& webView = fakeOf(*view);
  view->load(checkout, /*isPreload=*/true);

  webView.finishNavigation();  // no provisional start: nothing measured
  EXPECT_TRUE(logger->lines.empty());
  EXPECT_TRUE(instrumentation(webView).empty());

  webView.startProvisionalNavigation();
  advance(milliseconds(1234));
  webView.finishNavigation();
  EXPECT_EQ(logger->lines, std::vector<std::string>{"Loaded checkout in 1.23s"});
  EXPECT_EQ(instrumentation(webView),
            (std::vector<InstrumentationPayload>{{"checkout_finished_loading",
                                                  1234,
                                                  InstrumentationType::histogram,
                                                  {{"preloading", "true"}}}}));

  webView.finishNavigation();  // measured once per start
  webView.startProvisionalNavigation();
  webView.failProvisionalNavigation({std::string(platform::kUrlErrorDomain),
                                     platform::UrlErrorCode::cannotConnectToHost, std::nullopt});
  webView.finishNavigation();
  webView.startProvisionalNavigation();
  webView.failNavigation(
      {std::string(platform::kUrlErrorDomain), platform::UrlErrorCode::cancelled, std::nullopt});
  webView.finishNavigation();
  EXPECT_EQ(logger->lines.size(), 1U);
  EXPECT_EQ(instrumentation(webView).size(), 1U);

  // Without a bridge the time is still logged for the host, but not sent.
  const auto recovery = make(/*recovery=*/true);
  fakeOf(*recovery).startProvisionalNavigation();
  advance(milliseconds(50));
  fakeOf(*recovery).finishNavigation();
  EXPECT_EQ(logger->lines.back(), "Loaded checkout in 0.05s");
  EXPECT_TRUE(fakeOf(*recovery).scripts.empty());
}

TEST_F(CheckoutWebViewTest, PresentedIsSentOnEveryAssignmentOnceLoadedAndOnScreen) {
  const auto view = make();
  fake::FakeWebView& webView = fakeOf(*view);
  const std::string presented = CheckoutBridge::script("presented", std::nullopt);
  const auto sent = [&] {
    return std::count(webView.scripts.begin(), webView.scripts.end(), presented);
  };
  view->setCheckoutDidPresent(true);
  EXPECT_EQ(sent(), 0);
  view->load(checkout);
  webView.finishNavigation();
  EXPECT_EQ(sent(), 1);
  EXPECT_TRUE(view->presentedEventDidDispatch());
  view->setCheckoutDidPresent(true);
  view->setCheckoutDidLoad(true);
  EXPECT_EQ(sent(), 3);
  view->setCheckoutDidPresent(false);
  EXPECT_EQ(sent(), 3);
  view->detachBridge();
  view->setCheckoutDidPresent(true);
  EXPECT_EQ(sent(), 3);
}

TEST_F(CheckoutWebViewTest, BridgeMessagesBecomeDelegateCalls) {
  struct Case {
    std::string message;
    std::vector<std::string> calls;
    bool staysCached;
  };
  const std::string completed = envelope(
      "completed", R"({"orderDetails":{"id":"7","cart":{"token":"t","lines":[],"price":{}}}})");
  const std::vector<Case> cases = {
      // Completion drops the cached page but keeps its bridge: the page may keep talking.
      {completed, {"complete:7"}, false},
      {envelope("error", R"([{"group":"expired","code":"cart_expired","reason":"Gone"}])"),
       {"fail:3:final"},
       true},
      {envelope("checkoutBlockingEvent", "true"), {"modal:shown"}, true},
      {envelope("webPixels", tests::pixelBody("standard")), {"pixel"}, true},
      {"{not json", {"fail:0:recoverable"}, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    resetCheckoutState();
    delegate->calls.clear();
    const auto view = make();
    ASSERT_TRUE(fakeOf(*view).postMessage("mobileCheckoutSdk", c.message));
    EXPECT_EQ(delegate->calls, c.calls);
    EXPECT_TRUE(hasBridge(*view));
    EXPECT_EQ(obtain() == view, c.staysCached);
  }
  EXPECT_EQ(countLog("(Info) - Checkout completed event received"), 1U);

  delegate->calls.clear();
  const auto view = make();
  contentOf(*view).post("mobileCheckoutSdk", platform::ScriptMessage::NonStringBody{"{}"});
  EXPECT_EQ(delegate->calls, std::vector<std::string>{"fail:0:recoverable"});
  const std::string failed =
      "(Error) - Error decoding bridge script message: The checkout page "
      "sent an invalid bridge event";
  EXPECT_EQ(countLog(failed + ": Data corrupted at the top level: The given data was not valid "
                              "JSON."),
            1U);
  EXPECT_EQ(countLog(failed + "."), 1U);
}

TEST_F(CheckoutWebViewTest,
       NavigationFailuresAndProcessDeathsAreReportedUnlessCancelledOrProvisional) {
  const auto view = make();
  fake::FakeWebView& webView = fakeOf(*view);
  view->load(checkout);
  webView.failProvisionalNavigation({std::string(platform::kWebKitErrorDomain),
                                     platform::WebKitErrorCode::frameLoadInterrupted, std::nullopt},
                                    checkout);
  EXPECT_EQ(countLog("Failed provisional navigation with error: Frame load interrupted "
                     "url:https://shop.example/checkouts/c1"),
            1U);
  webView.failNavigation(
      {std::string(platform::kUrlErrorDomain), platform::UrlErrorCode::cancelled, std::nullopt});
  EXPECT_TRUE(delegate->calls.empty());
  EXPECT_EQ(countLog("(Debug) - WebView navigation failed with error: description:cancelled "
                     "domain:URLError code:-999"),
            1U);
  EXPECT_EQ(countLog("(Debug) - Ignoring cancelled URL redirect. code:NSURLErrorCancelled"), 1U);
  // The same code in another domain is a real failure.
  webView.failNavigation({"WebKitErrorDomain", -999, std::nullopt});

  const platform::NavigationError timedOut{std::string(platform::kUrlErrorDomain),
                                           platform::UrlErrorCode::timedOut,
                                           checkout.absoluteString()};
  webView.failNavigation(timedOut);
  const auto recovery = make(/*recovery=*/true);
  fakeOf(*recovery).failNavigation(timedOut);
  // A dead web content process is the platform's failure too, final in a recovery view.
  webView.terminateWebContentProcess(platform::WebProcessTermination::exceededMemoryLimit);
  fakeOf(*recovery).terminateWebContentProcess();
  EXPECT_EQ(delegate->calls,
            (std::vector<std::string>{"fail:0:recoverable", "fail:0:recoverable", "fail:0:final",
                                      "terminated", "terminated"}));
  const auto& sdkError = std::get<CheckoutError::SdkError>(delegate->errors[1].value());
  EXPECT_EQ(sdkError.underlying, (Error{"URLError", -1001, "The request timed out."}));
  EXPECT_EQ(delegate->errors[3],
            CheckoutError::sdkError(
                Error{"WKErrorDomain", 2, "The web content process exceeded its memory limit."},
                /*recoverable=*/true));
  EXPECT_FALSE(delegate->errors[4].isRecoverable());
}

TEST_F(CheckoutWebViewTest, ARecoveryViewCompletesOnTheConfirmationPage) {
  const auto recovery = make(/*recovery=*/true);
  fake::FakeWebView& webView = fakeOf(*recovery);
  webView.changeUrl(url("https://shop.example/checkouts/c1/thank_you_page?order_id=41"));
  webView.changeUrl(url("https://shop.example/checkouts/c1/thank-you?x=1&order_id=42&order_id=9"));
  webView.changeUrl(url("https://shop.example/checkouts/c1/Thank_You"));
  webView.changeUrl(std::nullopt);
  EXPECT_EQ(delegate->calls, (std::vector<std::string>{"complete:42", "complete:"}));

  // A normal view learns of completion from the bridge only.
  const auto normal = make();
  fakeOf(*normal).changeUrl(url("https://shop.example/checkouts/c1/thank-you?order_id=5"));
  EXPECT_EQ(delegate->calls.size(), 2U);
}

TEST_F(CheckoutWebViewTest, TeardownClosesTheChannelAndEndsTheObservation) {
  auto view = CheckoutWebView::create(platform.ui, false, std::nullopt);
  auto recovery = CheckoutWebView::create(platform.ui, true, std::nullopt);
  // The platform views may outlive the kit's (in a view tree, for instance).
  const std::shared_ptr<platform::WebView> webView = view->webViewPtr();
  const std::shared_ptr<platform::WebView> recoveryWebView = recovery->webViewPtr();
  auto& content = dynamic_cast<fake::FakeUserContentController&>(webView->userContentController());
  view.reset();
  recovery.reset();
  EXPECT_FALSE(content.hasHandler("mobileCheckoutSdk"));
  EXPECT_FALSE(dynamic_cast<fake::FakeWebView&>(*webView).postMessage(
      "mobileCheckoutSdk", envelope("checkoutBlockingEvent", "true")));
  EXPECT_EQ(dynamic_cast<fake::FakeWebView&>(*recoveryWebView).liveUrlObservers(), 0U);
  EXPECT_EQ(countLog("(Debug) - De-allocating webview"), 2U);
}

}  // namespace
}  // namespace vemba::checkout
