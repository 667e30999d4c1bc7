#include "checkout/webview/CheckoutWebView.h"

#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "checkout/bridge/CheckoutBridge.h"
#include "checkout/bridge/InstrumentationPayload.h"
#include "checkout/config/OSLogger.h"
#include "checkout/webview/CheckoutErrorMapping.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutURL.h"
#include "checkout/webview/ConfettiCannon.h"
#include "checkout/webview/ExternalLink.h"
#include "checkout/webview/MessageHandler.h"
#include "common/HostCall.h"
#include "common/MainThread.h"
#include "platform/Clock.h"
#include "platform/Services.h"
#include "platform/Ui.h"
#include "platform/UrlErrorCode.h"
#include "vemba/checkout/Configuration.h"
#include "vemba/checkout/UserAgent.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kInitializing = "Initializing webview, recovery: ";
constexpr std::string_view kBridging = "Bridging communication to checkout";
constexpr std::string_view kDetaching = "Detaching bridge";
constexpr std::string_view kDeallocating = "De-allocating webview";
constexpr std::string_view kLoading = "Loading checkout URL: ";
constexpr std::string_view kIsPreload = ", isPreload: ";
constexpr std::string_view kLinkIntercepted = "External or deep link clicked: ";
constexpr std::string_view kLinkInterceptedTail = " - request intercepted";
constexpr std::string_view kProvisionalStarted = "Started provisional navigation - url:";
constexpr std::string_view kProvisionalFailed = "Failed provisional navigation with error: ";
constexpr std::string_view kProvisionalFailedUrl = " url:";
constexpr std::string_view kLoadedIn = "Loaded checkout in ";
constexpr std::string_view kEmittingInstrumentation =
    "Emitting instrumentation event with payload: ";
constexpr std::string_view kEmittingPresented = "Emitting presented event to checkout";
constexpr std::string_view kCompletedReceived = "Checkout completed event received";
constexpr std::string_view kLoggerThrew = "The configuration's logger threw ";

constexpr std::string_view kPrefetchHeader = "Checkout-Purpose";
constexpr std::string_view kPrefetchValue = "prefetch";
constexpr std::string_view kOrderIdItem = "order_id";

// The load-time measurement sent to the page.
constexpr std::string_view kFinishedLoading = "checkout_finished_loading";
constexpr std::string_view kPreloadingTag = "preloading";

constexpr std::int64_t kFirstErrorStatus = 400;
// The first system version whose web views have an under-page colour.
constexpr int kUnderPageColorSystemVersion = 15;

std::string_view boolText(bool value) {
  return value ? "true" : "false";
}

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (std::string_view part : parts) {
    text.append(part);
  }
  return text;
}

// "InstrumentationPayload(name: n, value: 12, type: histogram, tags: [k: v])".
std::string printed(const InstrumentationPayload& payload) {
  std::string text = "InstrumentationPayload(name: " + payload.name +
                     ", value: " + std::to_string(payload.value) +
                     ", type: " + std::string(rawValue(payload.type)) + ", tags: [";
  bool first = true;
  for (const auto& [key, value] : payload.tags) {
    text.append(first ? "" : ", ").append(key).append(": ").append(value);
    first = false;
  }
  return text + "])";
}

Error errorOf(const platform::NavigationError& error) {
  return Error{error.domain, error.code,
               platform::describe(error.domain, error.code, error.failingUrl)};
}

}  // namespace

CheckoutWebView::CheckoutWebView(bool recovery, std::optional<MetaData::EntryPoint> entry)
    : checkoutBridge_(&CheckoutBridge::asProtocol()), entryPoint_(entry) {
  OSLogger::shared().debug(joined({kInitializing, boolText(recovery)}));
  isRecovery_ = recovery;
}

std::shared_ptr<CheckoutWebView> CheckoutWebView::create(
    platform::Ui& ui, bool recovery, std::optional<MetaData::EntryPoint> entry) {
  std::shared_ptr<CheckoutWebView> view(new CheckoutWebView(recovery, entry));
  view->build(ui);
  return view;
}

void CheckoutWebView::build(platform::Ui& ui) {
  const Configuration config = configuration();

  platform::WebViewConfiguration webConfiguration;
  webConfiguration.userContentController = ui.createUserContentController();
  webConfiguration.allowsInlineMediaPlayback = true;
  webConfiguration.nonPersistentDataStore = isRecovery_;
  const std::optional<MetaData::Platform> announcedPlatform =
      config.platform == Platform::reactNative
          ? std::optional<MetaData::Platform>(MetaData::Platform::reactNative)
          : std::nullopt;
  webConfiguration.applicationNameForUserAgent = UserAgent::string(
      isRecovery_ ? UserAgent::CheckoutType::recovery : UserAgent::CheckoutType::standard,
      config.colorScheme, announcedPlatform, entryPoint_);

  webView_ = ui.createWebView(platform::Rect{}, webConfiguration);
  webView_->setNavigationDelegate(weak_from_this());
  webView_->setTranslatesAutoresizingMaskIntoConstraints(false);
  webView_->setContentInsetAdjustmentNever();
  webView_->setOpaque(false);
  webView_->setBackgroundColor(config.backgroundColor);
  if (platform::majorVersion(ui.userInterfaceSystemVersion()) >= kUnderPageColorSystemVersion) {
    webView_->setUnderPageBackgroundColor(config.backgroundColor);
  }

  if (isRecovery_) {
    navigationObserver_ =
        webView_->observeUrl([weakSelf = weak_from_this()](const std::optional<Url>& url) {
          if (const std::shared_ptr<CheckoutWebView> self = weakSelf.lock()) {
            self->urlDidChange(url);
          }
        });
  } else {
    attachBridge();
  }
}

CheckoutWebView::~CheckoutWebView() {
  OSLogger::shared().debug(kDeallocating);
  if (!webView_) {
    return;
  }
  if (!isRecovery_) {
    detachBridge();
  } else if (navigationObserver_) {
    navigationObserver_->invalidate();
  }
}

void CheckoutWebView::attachBridge() {
  OSLogger::shared().debug(kBridging);
  webView_->userContentController().add(std::make_shared<MessageHandler>(weak_from_this()),
                                        CheckoutBridge::kMessageHandlerName);
  isBridgeAttached_ = true;
}

void CheckoutWebView::detachBridge() {
  OSLogger::shared().debug(kDetaching);
  webView_->userContentController().removeScriptMessageHandler(CheckoutBridge::kMessageHandlerName);
  isBridgeAttached_ = false;
}

std::string CheckoutWebView::currentUrlText() const {
  const std::optional<Url> url = webView_->url();
  return url ? url->absoluteString() : std::string();
}

void CheckoutWebView::load(const Url& checkout, bool isPreload) {
  OSLogger::shared().info(
      joined({kLoading, checkout.absoluteString(), kIsPreload, boolText(isPreload)}));
  platform::WebRequest request{
      checkout, {}, platform::CachePolicy::useProtocolCachePolicy, kLoadTimeout};
  if (isPreload && !isRecovery_ && configuration().preloading.enabled()) {
    isPreloadRequest_ = true;
    request.headers.emplace_back(kPrefetchHeader, kPrefetchValue);
  }
  webView_->load(request);
}

void CheckoutWebView::setCheckoutDidPresent(bool presented) {
  checkoutDidPresent_ = presented;
  presentedStateDidChange();
}

void CheckoutWebView::setCheckoutDidLoad(bool loaded) {
  checkoutDidLoad_ = loaded;
  presentedStateDidChange();
}

void CheckoutWebView::presentedStateDidChange() {
  // Deliberately not guarded by presentedEventDidDispatch_: see setCheckoutDidPresent().
  if (checkoutDidLoad_ && checkoutDidPresent_ && isBridgeAttached_) {
    OSLogger::shared().info(kEmittingPresented);
    checkoutBridge_->sendMessage(*webView_, CheckoutBridge::kPresentedMessage, std::nullopt);
    presentedEventDidDispatch_ = true;
  }
}

void CheckoutWebView::report(const CheckoutError& error) {
  if (const std::shared_ptr<CheckoutWebViewDelegate> delegate = viewDelegate()) {
    delegate->checkoutViewDidFailWithError(error);
  }
}

void CheckoutWebView::completeCheckout(const CheckoutCompletedEvent& event) {
  // The confetti goes over the controller's view, which holds this web view.
  if (platform::View* controllerView = webView_->superview()) {
    ConfettiCannon::fire(*controllerView);
  }
  // No disconnection: the page may keep talking after it completed.
  state().cache.invalidate(/*disconnect=*/false);
  if (const std::shared_ptr<CheckoutWebViewDelegate> delegate = viewDelegate()) {
    delegate->checkoutViewDidCompleteCheckout(event);
  }
}

platform::NavigationActionPolicy CheckoutWebView::decidePolicyForNavigationAction(
    platform::WebView& /*webView*/, const platform::NavigationAction& action) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (!action.url) {
    return platform::NavigationActionPolicy::allow;
  }
  const Url& url = *action.url;
  const bool opensNewWindow =
      action.navigationType == platform::NavigationType::linkActivated && !action.hasTargetFrame;
  const bool external = opensNewWindow || asksToOpenExternally(url);
  if (!external && !CheckoutURL{url}.isDeepLink()) {
    return platform::NavigationActionPolicy::allow;
  }
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  OSLogger::shared().debug(joined({kLinkIntercepted, url.absoluteString(), kLinkInterceptedTail}));
  if (const std::shared_ptr<CheckoutWebViewDelegate> delegate = viewDelegate()) {
    delegate->checkoutViewDidClickLink(removingOpenExternally(url));
  }
  return platform::NavigationActionPolicy::cancel;
}

platform::NavigationResponsePolicy CheckoutWebView::decidePolicyForNavigationResponse(
    platform::WebView& /*webView*/, const platform::NavigationResponse& response) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (!response.statusCode) {
    return platform::NavigationResponsePolicy::allow;  // not an HTTP response
  }
  const std::int64_t status = *response.statusCode;
  // Only the checkout document counts: sub-resources and other pages may fail freely.
  if (response.url != webView_->url() || status < kFirstErrorStatus) {
    return platform::NavigationResponsePolicy::allow;
  }
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  state().cache.invalidate(/*disconnect=*/true);
  logHandlingResponse(
      response.url ? std::optional<std::string>(response.url->absoluteString()) : std::nullopt,
      status);
  if (const std::optional<CheckoutError> error = checkoutErrorForHttpStatus(status, isRecovery_)) {
    report(*error);
  }
  return platform::NavigationResponsePolicy::cancel;
}

void CheckoutWebView::didStartProvisionalNavigation(platform::WebView& /*webView*/) {
  VEMBA_ASSERT_MAIN_THREAD();
  OSLogger::shared().info(joined({kProvisionalStarted, currentUrlText()}));
  timer_ = platform::services().clock->wallNow();
}

void CheckoutWebView::didFailProvisionalNavigation(platform::WebView& /*webView*/,
                                                   const platform::NavigationError& error) {
  VEMBA_ASSERT_MAIN_THREAD();
  OSLogger::shared().debug(joined(
      {kProvisionalFailed, errorOf(error).description, kProvisionalFailedUrl, currentUrlText()}));
  timer_.reset();
}

void CheckoutWebView::didFinishNavigation(platform::WebView& /*webView*/) {
  VEMBA_ASSERT_MAIN_THREAD();
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  if (const std::shared_ptr<CheckoutWebViewDelegate> delegate = viewDelegate()) {
    delegate->checkoutViewDidFinishNavigation();
  }
  if (timer_) {
    const std::chrono::system_clock::duration delta =
        platform::services().clock->wallNow() - *timer_;
    const double elapsed = std::chrono::duration<double>(delta).count();
    // Two decimals with a point whatever the process's locale ("%.2f" follows LC_NUMERIC).
    std::array<char, 64> seconds{};
    const auto written = std::to_chars(seconds.data(), seconds.data() + seconds.size(), elapsed,
                                       std::chars_format::fixed, 2);
    const std::string line =
        joined({kLoadedIn, std::string_view(seconds.data(), written.ptr), "s"});
    if (const std::optional<std::string> thrown =
            callHost([&] { configuration().logger->log(line); })) {
      OSLogger::shared().error(std::string(kLoggerThrew) + *thrown);
    }
    if (isBridgeAttached_) {
      InstrumentationPayload payload;
      payload.name = std::string(kFinishedLoading);
      // Milliseconds, truncated: taken from the exact duration, not from the rounded seconds.
      payload.value = std::chrono::duration_cast<std::chrono::milliseconds>(delta).count();
      payload.type = InstrumentationType::histogram;
      payload.tags.emplace(kPreloadingTag, boolText(isPreloadRequest_));
      OSLogger::shared().debug(joined({kEmittingInstrumentation, printed(payload)}));
      checkoutBridge_->instrument(*webView_, payload);
    }
  }
  setCheckoutDidLoad(true);
  timer_.reset();
}

void CheckoutWebView::didFailNavigation(platform::WebView& /*webView*/,
                                        const platform::NavigationError& error) {
  VEMBA_ASSERT_MAIN_THREAD();
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  timer_.reset();
  if (const std::optional<CheckoutError> failure =
          checkoutErrorForNavigationFailure(errorOf(error), isRecovery_)) {
    report(*failure);
  }
}

void CheckoutWebView::webContentProcessDidTerminate(platform::WebView& /*webView*/,
                                                    platform::WebProcessTermination reason) {
  VEMBA_ASSERT_MAIN_THREAD();
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  timer_.reset();
  // The page is gone: a preloaded copy of it is no use to the next presentation.
  state().cache.drop(*this);
  if (const std::shared_ptr<CheckoutWebViewDelegate> delegate = viewDelegate()) {
    delegate->checkoutViewDidTerminateWebContentProcess(
        checkoutErrorForWebProcessTermination(reason, isRecovery_));
  }
}

void CheckoutWebView::userContentControllerDidReceive(
    platform::UserContentController& /*controller*/, const platform::ScriptMessage& message) {
  VEMBA_ASSERT_MAIN_THREAD();
  using WebEvent = CheckoutBridge::WebEvent;
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  const Expected<WebEvent, BridgeError> decoded = CheckoutBridge::decode(message);
  if (!decoded) {
    report(checkoutErrorForBridgeFailure(decoded.error()));
    return;
  }
  const WebEvent& event = decoded.value();
  if (const std::optional<CheckoutError> error = checkoutErrorForWebEvent(event)) {
    report(*error);
    return;
  }
  if (const auto* complete = std::get_if<WebEvent::CheckoutComplete>(&event.value)) {
    OSLogger::shared().info(kCompletedReceived);
    completeCheckout(complete->event);
    return;
  }
  const std::shared_ptr<CheckoutWebViewDelegate> delegate = viewDelegate();
  if (!delegate) {
    return;
  }
  if (const auto* toggled = std::get_if<WebEvent::CheckoutModalToggled>(&event.value)) {
    delegate->checkoutViewDidToggleModal(toggled->modalVisible);
  } else if (const auto* pixels = std::get_if<WebEvent::WebPixels>(&event.value)) {
    if (pixels->event) {
      delegate->checkoutViewDidEmitWebPixelEvent(*pixels->event);
    }
  }
  // Unsupported messages are ignored without a log line.
}

void CheckoutWebView::urlDidChange(const std::optional<Url>& url) {
  if (!url || !CheckoutURL{*url}.isConfirmationPage()) {
    return;
  }
  std::optional<std::string> orderId;
  for (const Url::QueryItem& item : url->queryItems()) {
    if (item.name == kOrderIdItem) {
      orderId = item.value;
      break;
    }
  }
  const std::shared_ptr<CheckoutWebView> self = shared_from_this();
  completeCheckout(createEmptyCheckoutCompletedEvent(orderId));
}

}  // namespace vemba::checkout
