#include "vemba/testing/PresentedScreens.h"

#include <nlohmann/json.hpp>

#include "FakePlatformAccess.h"
#include "ads/formats/VembaWebViewController.h"
#include "checkout/bridge/BridgeEnvelope.h"
#include "checkout/bridge/CheckoutBridge.h"
#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/sheet/CheckoutWebViewController.h"
#include "checkout/webview/CheckoutWebView.h"

namespace vemba::testing {
namespace {

using ads::VembaWebViewController;
using checkout::CheckoutBridge;

// The order postCompleted() reports: its id, a cart with no lines and no totals.
constexpr std::string_view kCartToken = "cart-1";

void postOnAdChannel(const std::shared_ptr<fake::FakeWebView>& page,
                     std::variant<std::string, platform::ScriptMessage::NonStringBody> body) {
  if (page) {
    dynamic_cast<fake::FakeUserContentController&>(page->userContentController())
        .post(VembaWebViewController::kMessageHandlerName, std::move(body));
  }
}

platform::ScriptMessage::NonStringBody action(std::string_view name, std::string_view url) {
  return {nlohmann::json{
      {VembaWebViewController::kActionKey, name},
      {VembaWebViewController::kUrlKey,
       url}}.dump()};
}

// The controller of the sheet's checkout page, while the sheet lives.
std::shared_ptr<checkout::CheckoutWebViewController> pageOf(const PresentedCheckout::State& state) {
  const auto sheet = state.sheet.lock();
  return sheet ? sheetPage(*sheet).shared_from_this() : nullptr;
}

fake::FakeWebView* webViewOf(const PresentedCheckout::State& state) {
  const auto page = pageOf(state);
  return page ? &dynamic_cast<fake::FakeWebView&>(page->checkoutView()->webView()) : nullptr;
}

}  // namespace

std::string PresentedAd::pageUrl() const {
  const auto& page = state_->page;
  return page && !page->loads.empty() ? page->loads.front().url.absoluteString() : std::string();
}

bool PresentedAd::isOnScreen() const {
  const auto controller = state_->controller.lock();
  return controller && controller->screen()->presentingScreen() != nullptr;
}

void PresentedAd::postClose() const {
  postOnAdChannel(state_->page, std::string(VembaWebViewController::kCloseMessage));
}

void PresentedAd::postClick() const {
  postOnAdChannel(state_->page, std::string(VembaWebViewController::kClickMessage));
}

void PresentedAd::postOpenUrl(std::string_view url) const {
  postOnAdChannel(state_->page, action(VembaWebViewController::kOpenUrlAction, url));
}

void PresentedAd::postOpenCheckout(std::string_view url) const {
  postOnAdChannel(state_->page, action(VembaWebViewController::kOpenCheckoutAction, url));
}

void PresentedAd::pressClose() const {
  const auto controller = state_->controller.lock();
  if (!controller) {
    return;
  }
  for (const auto& view : fake::FakeViewState::of(controller->screen()->view()).subviewList) {
    if (auto* button = dynamic_cast<fake::FakeButton*>(view.get())) {
      button->tap();
      return;
    }
  }
}

std::string PresentedCheckout::url() const {
  return state_->url;
}

bool PresentedCheckout::isOnScreen() const {
  const auto sheet = state_->sheet.lock();
  return sheet && sheet->navigationScreen()->presentingScreen() != nullptr;
}

void PresentedCheckout::finishLoading(int httpStatus) const {
  if (fake::FakeWebView* webView = webViewOf(*state_)) {
    playPageLoad(*webView, httpStatus);
  }
}

void PresentedCheckout::postCompleted(std::string_view orderId) const {
  const nlohmann::json cart{{"token", kCartToken},
                            {"lines", nlohmann::json::array()},
                            {"price", nlohmann::json::object()}};
  postMessage(CheckoutBridge::kCompletedMessage,
              nlohmann::json{{"orderDetails", {{"id", orderId}, {"cart", cart}}}}.dump());
}

void PresentedCheckout::postError(std::string_view group, std::string_view code,
                                  std::string_view reason) const {
  nlohmann::json record{{"group", group}, {"code", code}};
  if (!reason.empty()) {
    record["reason"] = reason;
  }
  postMessage(CheckoutBridge::kErrorMessage, nlohmann::json::array({record}).dump());
}

void PresentedCheckout::postWebPixel(std::string_view eventJson) const {
  postMessage(CheckoutBridge::kWebPixelsMessage, eventJson);
}

void PresentedCheckout::postModalToggled(bool visible) const {
  postMessage(CheckoutBridge::kBlockingMessage,
              visible ? CheckoutBridge::kBlockingTrue : CheckoutBridge::kBlockingFalse);
}

void PresentedCheckout::postMessage(std::string_view name, std::string_view body) const {
  if (fake::FakeWebView* webView = webViewOf(*state_)) {
    webView->postMessage(
        CheckoutBridge::kMessageHandlerName,
        nlohmann::json{{checkout::kEnvelopeNameKey, name}, {checkout::kEnvelopeBodyKey, body}}
            .dump());
  }
}

void PresentedCheckout::pressClose() const {
  if (const auto page = pageOf(*state_)) {
    dynamic_cast<fake::FakeScreen&>(*page->screen()).pressRightBarButtonItem();
  }
}

checkout::CheckoutWebViewController& sheetPage(const checkout::CheckoutViewController& sheet) {
  const auto& container = dynamic_cast<const checkout::CheckoutViewControllerImpl&>(sheet);
  return dynamic_cast<checkout::CheckoutWebViewController&>(*container.childControllers().at(0));
}

void playPageLoad(fake::FakeWebView& webView, long status) {
  // The kit may release the view on the way (a failure swaps it for a recovery view).
  const std::shared_ptr<fake::FakeWebView> keep = webView.shared_from_this();
  webView.startProvisionalNavigation();
  if (webView.decidePolicyForNavigationResponse({webView.url(), status, true}) ==
      platform::NavigationResponsePolicy::cancel) {
    webView.failProvisionalNavigation({std::string(platform::kWebKitErrorDomain),
                                       platform::WebKitErrorCode::frameLoadInterrupted,
                                       std::nullopt});
    return;
  }
  webView.changeEstimatedProgress(0.5);
  webView.changeEstimatedProgress(1.0);
  webView.finishNavigation();
}

}  // namespace vemba::testing
