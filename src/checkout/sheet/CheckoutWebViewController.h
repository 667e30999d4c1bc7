// The screen that shows one checkout web view with its title, close control and progress line,
// and turns the web view's reports into calls on the host's CheckoutDelegate. It decides on
// recovery: after the first failure, when allowed, it swaps its web view for a recovery view. The
// death of the shown page's web content process is such a failure while the sheet is on screen.
//
// Owns its plain platform::Screen and is that screen's ScreenDelegate, the web view's
// CheckoutWebViewDelegate and the container's PresentationDelegate (all three hold it weakly).
// Owner: the CheckoutViewController whose root it is, through std::shared_ptr. Main thread only.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "checkout/webview/CheckoutWebViewDelegate.h"
#include "platform/Screen.h"
#include "platform/WebView.h"
#include "vemba/Url.h"
#include "vemba/checkout/CheckoutDelegate.h"
#include "vemba/checkout/MetaData.h"

namespace vemba::platform {
class Ui;
}

namespace vemba::checkout {

class CheckoutWebView;
class ProgressBarView;

class CheckoutWebViewController final
    : public platform::ScreenDelegate,
      public platform::PresentationDelegate,
      public CheckoutWebViewDelegate,
      public std::enable_shared_from_this<CheckoutWebViewController> {
 public:
  // The close control's system images, and the system major version from which the plain one
  // is used.
  static constexpr std::string_view kCloseImage = "xmark";
  static constexpr std::string_view kCloseImageBefore26 = "xmark.circle.fill";
  static constexpr int kPlainCloseImageSystemVersion = 26;
  // Failures this controller has seen before it stops recovering.
  static constexpr int kMaxRecoveryFailureCount = 2;

  // Takes its web view from the preload cache (the cached one when there is one) and
  // makes its screen, titled with the configuration's title, with the close control.
  static std::shared_ptr<CheckoutWebViewController> create(
      platform::Ui& ui, const Url& checkoutURL, std::weak_ptr<CheckoutDelegate> delegate,
      std::optional<MetaData::EntryPoint> entryPoint);
  ~CheckoutWebViewController() override;
  CheckoutWebViewController(const CheckoutWebViewController&) = delete;
  CheckoutWebViewController& operator=(const CheckoutWebViewController&) = delete;

  const std::shared_ptr<platform::Screen>& screen() const { return screen_; }
  const std::shared_ptr<CheckoutWebView>& checkoutView() const { return checkoutView_; }
  const Url& checkoutURL() const { return checkoutURL_; }
  int checkoutViewDidFailWithErrorCount() const { return failureCount_; }
  bool initialNavigation() const { return initialNavigation_; }
  // Made on first use.
  ProgressBarView& progressBar();
  const platform::BarButtonItem& closeBarButtonItem();

  std::shared_ptr<CheckoutDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(std::weak_ptr<CheckoutDelegate> delegate) { delegate_ = std::move(delegate); }

  // The sheet is on screen: lets the web view send "presented" once the page has loaded.
  void notifyPresented();
  // The close control, and the user's dismissal gesture: unless the host preloaded, drops the
  // preloaded page (disconnecting it); then tells the delegate the checkout was cancelled. Neither
  // dismisses the sheet.
  void close();

  // platform::ScreenDelegate
  void viewDidLoad() override;
  void viewWillAppear() override;
  // The page takes the keyboard when the sheet appears.
  platform::View* preferredFocusView() override;
  // platform::PresentationDelegate: the user's gesture does not dismiss the sheet while the page
  // reports a modal of its own.
  bool presentationControllerShouldDismiss() override;
  void presentationControllerDidDismiss() override;

  // CheckoutWebViewDelegate
  void checkoutViewDidStartNavigation() override {}
  void checkoutViewDidCompleteCheckout(const CheckoutCompletedEvent& event) override;
  void checkoutViewDidFinishNavigation() override;
  void checkoutViewDidClickLink(const Url& url) override;
  void checkoutViewDidFailWithError(const CheckoutError& error) override;
  void checkoutViewDidToggleModal(bool modalVisible) override;
  void checkoutViewDidEmitWebPixelEvent(const PixelEvent& event) override;
  // On screen, a failure like any other (checkoutViewDidFailWithError, recovery included); a sheet
  // that has left the screen, or never reached it, says nothing.
  void checkoutViewDidTerminateWebContentProcess(const CheckoutError& error) override;

 private:
  CheckoutWebViewController(platform::Ui& ui, const Url& checkoutURL,
                            std::weak_ptr<CheckoutDelegate> delegate,
                            std::optional<MetaData::EntryPoint> entryPoint);
  void adoptCheckoutView();
  void layOutCheckoutViewAndProgressBar();
  void observeProgress();
  void loadCheckout();
  bool shouldAttemptRecovery(const CheckoutError& error);
  // The sheet (the container, or this screen when it has none) is presented.
  bool isOnScreen() const;
  // Calls the host's delegate. Nothing it throws leaves this call (the default checkoutDidFail
  // throws the error it was given): the throw is logged at error level, naming `callback`, and
  // the sheet is dismissed. False when it threw.
  template <typename Call>
  bool tellDelegate(std::string_view callback, Call&& call);
  void presentFallbackViewController();
  void dismissSheet();

  platform::Ui* ui_;
  std::weak_ptr<CheckoutDelegate> delegate_;
  std::shared_ptr<CheckoutWebView> checkoutView_;
  int failureCount_ = 0;
  bool pageShowsModal_ = false;
  std::shared_ptr<ProgressBarView> progressBar_;
  bool initialNavigation_ = true;
  Url checkoutURL_;
  std::optional<MetaData::EntryPoint> entryPoint_;
  std::optional<platform::BarButtonItem> closeBarButtonItem_;
  std::unique_ptr<platform::Observation> progressObserver_;
  std::shared_ptr<platform::Screen> screen_;
};

}  // namespace vemba::checkout
