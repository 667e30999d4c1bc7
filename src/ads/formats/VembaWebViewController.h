// The full-screen screen an ad is shown on: one web view with the ad page, a close button over
// it, one retry of a failed load for three network conditions, and the page's "vemba" message
// channel (close, click, open a URL outside the app, open a checkout over the ad). It reports
// close and click to its delegate and never dismisses itself.
//
// A page whose web content process dies is loaded once more, in a new process, on the next turn
// of the main queue; that reload and the network retry are budgets of their own, neither spends
// the other. A death while a retry waits leaves the load to the retry (no reload spent). A second
// death leaves the screen as it is (the web view's background under the close button), still
// closable, and tells nobody.
//
// Owned by the ad while it shows (weakly) and by its presentation (strongly, see
// platform::Screen). Main thread only. Create with create(); it owns its platform screen and is
// that screen's delegate, its web view's navigation delegate and (through a weak forwarder) its
// script-message handler, so nothing it registers keeps it alive.
#pragma once

#include <memory>
#include <optional>

#include "ads/formats/AdWebViewPreparation.h"
#include "platform/Screen.h"
#include "platform/ScriptMessage.h"
#include "platform/WebView.h"
#include "vemba/Url.h"

namespace vemba::platform {
class Button;
}

namespace vemba::ads {

class VembaWebViewController;

// Contract: called on the main thread; the ad objects implement it.
class VembaWebViewControllerDelegate {
 public:
  virtual ~VembaWebViewControllerDelegate() = default;
  // The user pressed the close button, or the page sent "close".
  virtual void webViewControllerDidClose(VembaWebViewController& controller) = 0;
  // The page sent "click".
  virtual void webViewControllerDidClick(VembaWebViewController& controller) = 0;
};

class VembaWebViewController final : public platform::ScreenDelegate,
                                     public platform::NavigationDelegate,
                                     public platform::ScriptMessageHandler,
                                     public std::enable_shared_from_this<VembaWebViewController> {
 public:
  // The channel the ad page posts to.
  static constexpr std::string_view kMessageHandlerName = "vemba";
  // The page's vocabulary: bare strings for close and click, dictionary actions for the rest.
  static constexpr std::string_view kCloseMessage = "close";
  static constexpr std::string_view kClickMessage = "click";
  static constexpr std::string_view kActionKey = "action";
  static constexpr std::string_view kUrlKey = "url";
  static constexpr std::string_view kOpenUrlAction = "openURL";
  static constexpr std::string_view kOpenCheckoutAction = "openCheckout";
  // Retries of a failed load for the controller's whole life.
  static constexpr int maxRetries = 1;
  // Reloads of the page after its web content process died, for the controller's whole life.
  static constexpr int maxProcessReloads = 1;

  // A controller with its screen (view not loaded yet); null when the platform has no user
  // interface.
  static std::shared_ptr<VembaWebViewController> create();
  // The host muted or unmuted its application: every ad page alive follows.
  static void applicationMutedDidChange(bool muted);

  std::shared_ptr<VembaWebViewControllerDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(std::weak_ptr<VembaWebViewControllerDelegate> delegate) {
    delegate_ = std::move(delegate);
  }

  // Keeps the showing ad's claim on a readied web view until this screen's web view is made.
  void holdPreparedWebView(std::unique_ptr<PreparedWebViewClaim> claim);

  // Loads `url` in the web view, or parks it until the view has loaded.
  void load(const Url& url);

  const std::shared_ptr<platform::Screen>& screen() const { return screen_; }
  const std::shared_ptr<platform::WebView>& webView() const { return webView_; }
  const std::optional<Url>& pendingURL() const { return pendingURL_; }
  int retryCount() const { return retryCount_; }
  int processReloadCount() const { return processReloadCount_; }

  // platform::ScreenDelegate
  void viewDidLoad() override;
  // The user's escape gesture does what the close button does.
  bool accessibilityPerformEscape() override;
  // The page takes the keyboard when the ad appears.
  platform::View* preferredFocusView() override { return webView_.get(); }
  // platform::NavigationDelegate
  void didFailProvisionalNavigation(platform::WebView& webView,
                                    const platform::NavigationError& error) override;
  void didFailNavigation(platform::WebView& webView,
                         const platform::NavigationError& error) override;
  void webContentProcessDidTerminate(platform::WebView& webView,
                                     platform::WebProcessTermination reason) override;
  // platform::ScriptMessageHandler
  void userContentControllerDidReceive(platform::UserContentController& controller,
                                       const platform::ScriptMessage& message) override;

  // Use create().
  explicit VembaWebViewController(std::shared_ptr<platform::Screen> screen);

 private:
  void setupWebView();
  void setupCloseButton();
  void handleCloseButton();
  void handleLoadError(const platform::NavigationError& error);
  void handleDictionaryMessage(const std::string& jsonText);

  std::weak_ptr<VembaWebViewControllerDelegate> delegate_;
  std::shared_ptr<platform::Screen> screen_;
  std::shared_ptr<platform::WebView> webView_;
  std::shared_ptr<platform::Button> closeButton_;
  std::optional<Url> pendingURL_;  // never cleared: also the fallback URL of the retry
  int retryCount_ = 0;             // never reset
  int processReloadCount_ = 0;     // never reset
  bool retryPending_ = false;      // a retry is scheduled and has not run yet
  std::unique_ptr<PreparedWebViewClaim> preparedWebView_;
};

}  // namespace vemba::ads
