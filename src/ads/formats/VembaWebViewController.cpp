#include "ads/formats/VembaWebViewController.h"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ads/core/AdsState.h"
#include "ads/core/VembaLogger.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "checkout/webview/MessageHandler.h"
#include "common/JsonDecoding.h"
#include "common/MainThread.h"
#include "platform/Application.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "platform/Ui.h"
#include "platform/UrlErrorCode.h"
#include "vemba/ads/VembaSDK.h"
#include "vemba/checkout/Checkout.h"

namespace vemba::ads {
namespace {

using Attribute = platform::LayoutAnchor::Attribute;

// Log texts, each followed by one value at its call site.
constexpr std::string_view kLoadingMessage = "WebViewController loading: ";
constexpr std::string_view kFailedProvisionalMessage = "WebView failed provisional load: ";
constexpr std::string_view kFailedLoadMessage = "WebView failed load: ";
constexpr std::string_view kReceivedMessage = "vemba received message: ";
constexpr std::string_view kOpeningUrlMessage = "Opening URL in Safari: ";
constexpr std::string_view kPresentingCheckoutMessage = "Presenting Checkout Sheet for URL: ";
constexpr std::string_view kProcessTerminatedMessage = "WebView content process terminated: ";
constexpr std::string_view kProcessReloadMessage = "Reloading WebView in a new content process: ";

// The close button, drawn over the web view from the first frame.
constexpr std::string_view kCloseTitle = "\u2715";
constexpr double kCloseCornerRadius = 15.0;
constexpr double kCloseFontSize = 20.0;
constexpr double kCloseInset = 10.0;
constexpr double kCloseSide = 30.0;
constexpr platform::Color kCloseBackground = platform::Color::rgba(0.0, 0.0, 0.0, 0.5);
constexpr platform::Color kWhite = platform::Color::rgba(1.0, 1.0, 1.0, 1.0);
constexpr platform::Color kBlack = platform::Color::rgba(0.0, 0.0, 0.0, 1.0);

constexpr std::chrono::seconds kRequestTimeout{10};
constexpr std::chrono::seconds kRetryDelay{1};

// The load failures worth one retry: no connection, unknown host, time-out.
bool isRetryable(int code) {
  return code == platform::UrlErrorCode::notConnectedToInternet ||
         code == platform::UrlErrorCode::cannotFindHost || code == platform::UrlErrorCode::timedOut;
}

void log(std::string_view prefix, std::string_view value) {
  std::string message(prefix);
  message += value;
  VembaLogger::log(message);
}

}  // namespace

std::shared_ptr<VembaWebViewController> VembaWebViewController::create() {
  platform::Ui* ui = platform::ui();
  if (ui == nullptr) {
    return nullptr;
  }
  auto controller = std::make_shared<VembaWebViewController>(ui->createScreen());
  controller->screen_->setDelegate(controller);
  auto& live = state().liveControllers;
  std::erase_if(live, [](const auto& weak) { return weak.expired(); });
  live.push_back(controller);
  return controller;
}

void VembaWebViewController::applicationMutedDidChange(bool muted) {
  for (const std::weak_ptr<VembaWebViewController>& weak : state().liveControllers) {
    if (const auto controller = weak.lock(); controller && controller->webView_) {
      controller->webView_->setMuted(muted);
    }
  }
}

VembaWebViewController::VembaWebViewController(std::shared_ptr<platform::Screen> screen)
    : screen_(std::move(screen)) {}

void VembaWebViewController::viewDidLoad() {
  VEMBA_ASSERT_MAIN_THREAD();
  setupWebView();
  setupCloseButton();
  if (pendingURL_) {
    load(*pendingURL_);
  }
}

void VembaWebViewController::holdPreparedWebView(std::unique_ptr<PreparedWebViewClaim> claim) {
  preparedWebView_ = std::move(claim);
}

void VembaWebViewController::setupWebView() {
  platform::Ui& ui = *platform::ui();
  platform::View& view = screen_->view();

  platform::WebViewConfiguration configuration;
  configuration.userContentController = ui.createUserContentController();
  // The handler forwards to this controller while it exists, so the registration (which lives as
  // long as the web view) does not keep the controller alive.
  configuration.userContentController->add(
      std::make_shared<checkout::MessageHandler>(weak_from_this()), kMessageHandlerName);
  configuration.allowsInlineMediaPlayback = true;
  AdWebViewPreparation::configureAdWebView(configuration);

  webView_ = ui.createWebView(view.bounds(), configuration);
  preparedWebView_.reset();  // consumed; another ready ad may now have one readied
  webView_->setAutoresizingMask(platform::AutoresizingMask::flexibleWidth |
                                platform::AutoresizingMask::flexibleHeight);
  webView_->setScrollEnabled(true);
  webView_->setBackgroundColor(kBlack);
  webView_->setNavigationDelegate(weak_from_this());
  webView_->setAllowsBackForwardNavigationGestures(true);
  webView_->setMuted(VembaSDK::shared().isApplicationMuted());
  view.addSubview(webView_);
}

void VembaWebViewController::setupCloseButton() {
  platform::Ui& ui = *platform::ui();
  platform::View& view = screen_->view();

  closeButton_ = ui.createButton();
  closeButton_->setTitle(std::string(kCloseTitle));
  closeButton_->setTitleColor(kWhite);
  closeButton_->setBackgroundColor(kCloseBackground);
  closeButton_->setCornerRadius(kCloseCornerRadius);
  closeButton_->setSystemFont(kCloseFontSize, platform::Button::FontWeight::bold);
  closeButton_->setTranslatesAutoresizingMaskIntoConstraints(false);
  view.addSubview(closeButton_);

  // The trailing edge follows the view's own edge, not its safe area.
  ui.activate({
      {closeButton_->anchor(Attribute::top), view.safeAreaAnchor(Attribute::top), kCloseInset},
      {closeButton_->anchor(Attribute::trailing), view.anchor(Attribute::trailing), -kCloseInset},
      {closeButton_->anchor(Attribute::width), std::nullopt, kCloseSide},
      {closeButton_->anchor(Attribute::height), std::nullopt, kCloseSide},
  });

  std::weak_ptr<VembaWebViewController> weakSelf = weak_from_this();
  closeButton_->setAction([weakSelf] {
    if (const std::shared_ptr<VembaWebViewController> self = weakSelf.lock()) {
      self->handleCloseButton();
    }
  });
}

void VembaWebViewController::handleCloseButton() {
  if (const std::shared_ptr<VembaWebViewControllerDelegate> listener = delegate()) {
    listener->webViewControllerDidClose(*this);
  }
}

bool VembaWebViewController::accessibilityPerformEscape() {
  VEMBA_ASSERT_MAIN_THREAD();
  handleCloseButton();
  return true;
}

void VembaWebViewController::load(const Url& url) {
  if (!webView_) {
    pendingURL_ = url;
    return;
  }
  log(kLoadingMessage, url.absoluteString());
  platform::WebRequest request{
      url, {}, platform::CachePolicy::reloadIgnoringLocalCacheData, kRequestTimeout};
  webView_->load(request);
}

void VembaWebViewController::didFailProvisionalNavigation(platform::WebView& /*webView*/,
                                                          const platform::NavigationError& error) {
  VEMBA_ASSERT_MAIN_THREAD();
  const std::string description = platform::describe(error.domain, error.code, error.failingUrl);
  log(kFailedProvisionalMessage, description + " (Code: " + std::to_string(error.code) + ")");
  handleLoadError(error);
}

void VembaWebViewController::didFailNavigation(platform::WebView& /*webView*/,
                                               const platform::NavigationError& error) {
  VEMBA_ASSERT_MAIN_THREAD();
  log(kFailedLoadMessage, platform::describe(error.domain, error.code, error.failingUrl));
  handleLoadError(error);
}

void VembaWebViewController::handleLoadError(const platform::NavigationError& error) {
  // Only the code counts; its domain is not looked at.
  if (!isRetryable(error.code) || retryCount_ >= maxRetries) {
    return;
  }
  ++retryCount_;
  retryPending_ = true;
  VembaLogger::log("Retrying WebView load (Attempt " + std::to_string(retryCount_) + "/" +
                   std::to_string(maxRetries) + ")...");
  std::weak_ptr<VembaWebViewController> weakSelf = weak_from_this();
  platform::services().mainQueue->postAfter(kRetryDelay, [weakSelf] {
    const std::shared_ptr<VembaWebViewController> self = weakSelf.lock();
    if (!self) {
      return;
    }
    self->retryPending_ = false;
    std::optional<Url> url = self->webView_->url();
    if (!url) {
      url = self->pendingURL_;
    }
    if (url) {
      self->load(*url);
    }
  });
}

void VembaWebViewController::webContentProcessDidTerminate(platform::WebView& /*webView*/,
                                                           platform::WebProcessTermination reason) {
  VEMBA_ASSERT_MAIN_THREAD();
  log(kProcessTerminatedMessage, platform::describe(reason));
  // The ad's own page, as parked before the view loaded (the page may have navigated away from
  // it, and its URL went with the process).
  // A pending retry loads the page anyway, in a new process: one load, and no reload spent.
  if (retryPending_ || processReloadCount_ >= maxProcessReloads || !pendingURL_) {
    return;
  }
  ++processReloadCount_;
  log(kProcessReloadMessage, pendingURL_->absoluteString());
  // Not from inside the engine's report: on the next turn, holding the controller weakly.
  platform::services().mainQueue->post([weakSelf = weak_from_this()] {
    if (const std::shared_ptr<VembaWebViewController> self = weakSelf.lock()) {
      self->load(*self->pendingURL_);
    }
  });
}

void VembaWebViewController::userContentControllerDidReceive(
    platform::UserContentController& /*controller*/, const platform::ScriptMessage& message) {
  VEMBA_ASSERT_MAIN_THREAD();
  log(kReceivedMessage, message.name);
  if (message.name != kMessageHandlerName) {
    return;
  }
  if (const auto* text = std::get_if<std::string>(&message.body)) {
    const std::shared_ptr<VembaWebViewControllerDelegate> listener = delegate();
    if (!listener) {
      return;
    }
    if (*text == kCloseMessage) {
      listener->webViewControllerDidClose(*this);
    } else if (*text == kClickMessage) {
      listener->webViewControllerDidClick(*this);
    }
    return;
  }
  handleDictionaryMessage(std::get<platform::ScriptMessage::NonStringBody>(message.body).jsonText);
}

void VembaWebViewController::handleDictionaryMessage(const std::string& jsonText) {
  const std::optional<json::Json> parsed = json::parseJson(jsonText);
  // Numbers, arrays, null and empty dictionaries are ignored, as is a missing or non-string
  // action.
  if (!parsed || !parsed->is_object() || parsed->empty()) {
    return;
  }
  const json::Json& body = *parsed;
  const auto action = body.find(kActionKey);
  if (action == body.end() || !action->is_string()) {
    return;
  }
  const std::string& name = action->get_ref<const std::string&>();
  if (name != kOpenUrlAction && name != kOpenCheckoutAction) {
    return;
  }
  const auto urlValue = body.find(kUrlKey);
  if (urlValue == body.end() || !urlValue->is_string()) {
    return;
  }
  const std::string& text = urlValue->get_ref<const std::string&>();
  const std::optional<Url> url = Url::parse(text);
  if (!url) {
    return;
  }
  if (name == kOpenUrlAction) {
    if (platform::Application* application = platform::application()) {
      application->open(*url);
    }
    log(kOpeningUrlMessage, text);
    return;
  }
  log(kPresentingCheckoutMessage, url->absoluteString());
  // The sheet is presented over the ad without a delegate; its controller is not kept.
  checkout::present(*url, screen_, std::weak_ptr<checkout::CheckoutDelegate>{});
}

}  // namespace vemba::ads
