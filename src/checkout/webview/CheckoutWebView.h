// The web view in which the hosted checkout page runs.
//
// A CheckoutWebView owns one platform::WebView and is its navigation delegate (held weakly by
// the platform view) and, through a MessageHandler, the receiver of the page's bridge messages.
// It reports upwards through CheckoutWebViewDelegate. The kit obtains views from the preload
// cache (CheckoutWebViewCache). A view whose web content process dies leaves the cache at once,
// without a word to anybody (the host's preload flag stays), and tells its delegate, which alone
// knows whether a sheet on screen shows it.
//
// Owner: the cache entry and the controller that shows the view, through std::shared_ptr. Main
// thread only.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "checkout/webview/CheckoutWebViewDelegate.h"
#include "platform/WebView.h"
#include "vemba/Url.h"
#include "vemba/checkout/MetaData.h"

namespace vemba::platform {
class Ui;
}

namespace vemba::checkout {

class CheckoutBridgeProtocol;
class CheckoutError;

class CheckoutWebView final : public platform::NavigationDelegate,
                              public platform::ScriptMessageHandler,
                              public std::enable_shared_from_this<CheckoutWebView> {
 public:
  // How long a checkout load may take.
  static constexpr std::chrono::seconds kLoadTimeout{60};

  // The designated initialiser (the cache calls it): a view with a fresh configuration on
  // `ui`, its user agent, colours and, for a recovery view, a non-persistent data store and a URL
  // observation instead of the bridge.
  static std::shared_ptr<CheckoutWebView> create(platform::Ui& ui, bool recovery,
                                                 std::optional<MetaData::EntryPoint> entry);
  ~CheckoutWebView() override;
  CheckoutWebView(const CheckoutWebView&) = delete;
  CheckoutWebView& operator=(const CheckoutWebView&) = delete;

  // Loads the checkout page; a preload of a non-recovery view with preloading enabled is marked
  // with "Checkout-Purpose: prefetch".
  void load(const Url& checkout, bool isPreload = false);

  platform::WebView& webView() const { return *webView_; }
  const std::shared_ptr<platform::WebView>& webViewPtr() const { return webView_; }

  bool isBridgeAttached() const { return isBridgeAttached_; }
  bool isRecovery() const { return isRecovery_; }
  bool isPreloadRequest() const { return isPreloadRequest_; }
  bool presentedEventDidDispatch() const { return presentedEventDidDispatch_; }
  std::optional<MetaData::EntryPoint> entryPoint() const { return entryPoint_; }

  // Both setters send "presented" to the page whenever, after the assignment, the page has
  // loaded, the sheet is on screen and the bridge is attached; every such assignment sends it
  // again, and the page tolerates the repetition.
  bool checkoutDidPresent() const { return checkoutDidPresent_; }
  void setCheckoutDidPresent(bool presented);
  bool checkoutDidLoad() const { return checkoutDidLoad_; }
  void setCheckoutDidLoad(bool loaded);

  std::shared_ptr<CheckoutWebViewDelegate> viewDelegate() const { return viewDelegate_.lock(); }
  void setViewDelegate(std::weak_ptr<CheckoutWebViewDelegate> delegate) {
    viewDelegate_ = std::move(delegate);
  }
  // The bridge implementation the view talks to its page through (CheckoutBridge by default).
  void setCheckoutBridge(const CheckoutBridgeProtocol& bridge) { checkoutBridge_ = &bridge; }

  // Removes the page's channel: later page messages fail in the page and never arrive.
  void detachBridge();

  // platform::NavigationDelegate
  platform::NavigationActionPolicy decidePolicyForNavigationAction(
      platform::WebView& webView, const platform::NavigationAction& action) override;
  platform::NavigationResponsePolicy decidePolicyForNavigationResponse(
      platform::WebView& webView, const platform::NavigationResponse& response) override;
  void didStartProvisionalNavigation(platform::WebView& webView) override;
  void didFailProvisionalNavigation(platform::WebView& webView,
                                    const platform::NavigationError& error) override;
  void didFinishNavigation(platform::WebView& webView) override;
  void didFailNavigation(platform::WebView& webView,
                         const platform::NavigationError& error) override;
  void webContentProcessDidTerminate(platform::WebView& webView,
                                     platform::WebProcessTermination reason) override;

  // platform::ScriptMessageHandler: the page's bridge messages.
  void userContentControllerDidReceive(platform::UserContentController& controller,
                                       const platform::ScriptMessage& message) override;

 private:
  CheckoutWebView(bool recovery, std::optional<MetaData::EntryPoint> entry);
  void build(platform::Ui& ui);
  void attachBridge();
  void presentedStateDidChange();
  void report(const CheckoutError& error);
  void completeCheckout(const CheckoutCompletedEvent& event);
  void urlDidChange(const std::optional<Url>& url);
  std::string currentUrlText() const;

  std::optional<std::chrono::system_clock::time_point> timer_;
  const CheckoutBridgeProtocol* checkoutBridge_;
  std::unique_ptr<platform::Observation> navigationObserver_;
  bool isBridgeAttached_ = false;
  bool isRecovery_ = false;
  std::weak_ptr<CheckoutWebViewDelegate> viewDelegate_;
  bool presentedEventDidDispatch_ = false;
  bool checkoutDidPresent_ = false;
  bool checkoutDidLoad_ = false;
  bool isPreloadRequest_ = false;
  std::optional<MetaData::EntryPoint> entryPoint_;
  std::shared_ptr<platform::WebView> webView_;
};

}  // namespace vemba::checkout
