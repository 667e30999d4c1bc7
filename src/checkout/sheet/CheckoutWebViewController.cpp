#include "checkout/sheet/CheckoutWebViewController.h"

#include <string>

#include "checkout/config/OSLogger.h"
#include "checkout/sheet/ProgressBarView.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutURL.h"
#include "checkout/webview/CheckoutWebView.h"
#include "common/HostCall.h"
#include "common/MainThread.h"
#include "platform/Services.h"
#include "platform/Ui.h"
#include "vemba/checkout/Configuration.h"

namespace vemba::checkout {
namespace {

using Edge = platform::LayoutAnchor::Attribute;

constexpr std::string_view kDelegateThrew = " threw ";
constexpr std::string_view kSheetDismissed = "; the sheet is dismissed";
constexpr std::string_view kThrewItsError = "the CheckoutError it was given";

}  // namespace

template <typename Call>
bool CheckoutWebViewController::tellDelegate(std::string_view callback, Call&& call) {
  std::string thrown;
  try {
    std::forward<Call>(call)();
    return true;
  } catch (const CheckoutError&) {
    thrown = kThrewItsError;  // the default checkoutDidFail
  } catch (...) {
    thrown = describeCurrentException();
  }
  OSLogger::shared().error(std::string(callback) + std::string(kDelegateThrew) + thrown +
                           std::string(kSheetDismissed));
  dismissSheet();
  return false;
}

CheckoutWebViewController::CheckoutWebViewController(platform::Ui& ui, const Url& checkoutURL,
                                                     std::weak_ptr<CheckoutDelegate> delegate,
                                                     std::optional<MetaData::EntryPoint> entryPoint)
    : ui_(&ui),
      delegate_(std::move(delegate)),
      checkoutURL_(checkoutURL),
      entryPoint_(entryPoint) {}

std::shared_ptr<CheckoutWebViewController> CheckoutWebViewController::create(
    platform::Ui& ui, const Url& checkoutURL, std::weak_ptr<CheckoutDelegate> delegate,
    std::optional<MetaData::EntryPoint> entryPoint) {
  std::shared_ptr<CheckoutWebViewController> controller(
      new CheckoutWebViewController(ui, checkoutURL, std::move(delegate), entryPoint));
  controller->checkoutView_ =
      state().cache.forCheckout(checkoutURL, /*recovery=*/false, entryPoint);
  if (!controller->checkoutView_) {
    return nullptr;
  }
  controller->adoptCheckoutView();
  controller->screen_ = ui.createScreen();
  controller->screen_->setDelegate(controller);
  controller->screen_->setTitle(configuration().title);
  controller->screen_->setRightBarButtonItem(controller->closeBarButtonItem());
  return controller;
}

CheckoutWebViewController::~CheckoutWebViewController() {
  if (progressObserver_) {
    progressObserver_->invalidate();
  }
}

ProgressBarView& CheckoutWebViewController::progressBar() {
  if (!progressBar_) {
    progressBar_ = ProgressBarView::create(*ui_);
  }
  return *progressBar_;
}

const platform::BarButtonItem& CheckoutWebViewController::closeBarButtonItem() {
  if (!closeBarButtonItem_) {
    platform::BarButtonItem item;
    item.action = [weakSelf = weak_from_this()] {
      if (const auto self = weakSelf.lock()) {
        self->close();
      }
    };
    if (const std::optional<Color> tint = configuration().closeButtonTintColor) {
      item.kind = platform::BarButtonItem::Kind::image;
      item.systemImageName =
          platform::majorVersion(ui_->userInterfaceSystemVersion()) >= kPlainCloseImageSystemVersion
              ? kCloseImage
              : kCloseImageBefore26;
      item.tintColor = tint;
    } else {
      item.kind = platform::BarButtonItem::Kind::systemClose;
    }
    closeBarButtonItem_ = std::move(item);
  }
  return *closeBarButtonItem_;
}

void CheckoutWebViewController::adoptCheckoutView() {
  platform::WebView& webView = checkoutView_->webView();
  webView.setTranslatesAutoresizingMaskIntoConstraints(false);
  webView.setContentInsetAdjustmentNever();
  checkoutView_->setViewDelegate(weak_from_this());
}

void CheckoutWebViewController::notifyPresented() {
  checkoutView_->setCheckoutDidPresent(true);
}

void CheckoutWebViewController::viewDidLoad() {
  VEMBA_ASSERT_MAIN_THREAD();
  layOutCheckoutViewAndProgressBar();
  screen_->view().bringSubviewToFront(progressBar().view());
  observeProgress();
  loadCheckout();
}

void CheckoutWebViewController::viewWillAppear() {
  VEMBA_ASSERT_MAIN_THREAD();
  screen_->view().setBackgroundColor(configuration().backgroundColor);
}

void CheckoutWebViewController::layOutCheckoutViewAndProgressBar() {
  platform::View& view = screen_->view();
  platform::WebView& webView = checkoutView_->webView();
  view.addSubview(checkoutView_->webViewPtr());
  ui_->activate({
      {webView.anchor(Edge::top), view.safeAreaAnchor(Edge::top), 0.0},
      {webView.anchor(Edge::leading), view.anchor(Edge::leading), 0.0},
      {webView.anchor(Edge::trailing), view.anchor(Edge::trailing), 0.0},
      {webView.anchor(Edge::bottom), view.anchor(Edge::bottom), 0.0},
  });
  ProgressBarView& bar = progressBar();
  bar.moveToSuperview(view);
  platform::View& barView = bar.view();
  ui_->activate({
      {barView.anchor(Edge::top), view.safeAreaAnchor(Edge::top), 0.0},
      {barView.anchor(Edge::leading), view.safeAreaAnchor(Edge::leading), 0.0},
      {barView.anchor(Edge::trailing), view.safeAreaAnchor(Edge::trailing), 0.0},
      {barView.anchor(Edge::height), std::nullopt, ProgressBarView::kBarHeight},
  });
}

void CheckoutWebViewController::observeProgress() {
  progressObserver_ = checkoutView_->webView().observeEstimatedProgress(
      [weakSelf = weak_from_this()](double progress) {
        if (const auto self = weakSelf.lock()) {
          self->progressBar().progressDidChange(progress);
        }
      });
}

void CheckoutWebViewController::loadCheckout() {
  const platform::WebView& webView = checkoutView_->webView();
  if (!webView.url()) {
    initialNavigation_ = true;
    checkoutView_->load(checkoutURL_, /*isPreload=*/false);
    progressBar().startAnimating();
  } else if (webView.isLoading() && initialNavigation_) {
    // A preloaded page that is still loading.
    progressBar().startAnimating();
  }
}

void CheckoutWebViewController::close() {
  const std::shared_ptr<CheckoutWebViewController> self = shared_from_this();
  // A page the host preloaded stays cached for the next presentation.
  if (!state().cache.preloadingActivatedByClient()) {
    state().cache.invalidate(/*disconnect=*/true);
  }
  if (const std::shared_ptr<CheckoutDelegate> delegate = delegate_.lock()) {
    tellDelegate("checkoutDidCancel", [&] { delegate->checkoutDidCancel(); });
  }
}

bool CheckoutWebViewController::presentationControllerShouldDismiss() {
  VEMBA_ASSERT_MAIN_THREAD();
  // While the page shows a dialog of its own, the user's gesture is the page's business.
  return !pageShowsModal_;
}

platform::View* CheckoutWebViewController::preferredFocusView() {
  VEMBA_ASSERT_MAIN_THREAD();
  return checkoutView_->webViewPtr().get();
}

void CheckoutWebViewController::presentationControllerDidDismiss() {
  VEMBA_ASSERT_MAIN_THREAD();
  close();
}

void CheckoutWebViewController::checkoutViewDidCompleteCheckout(
    const CheckoutCompletedEvent& event) {
  if (const std::shared_ptr<CheckoutDelegate> delegate = delegate_.lock()) {
    tellDelegate("checkoutDidComplete", [&] { delegate->checkoutDidComplete(event); });
  }
}

void CheckoutWebViewController::checkoutViewDidFinishNavigation() {
  initialNavigation_ = false;
  progressBar().stopAnimating();
  ui_->animate(ui_->navigationBarHideShowDuration(),
               [weakView = std::weak_ptr<platform::WebView>(checkoutView_->webViewPtr())] {
                 if (const auto view = weakView.lock()) {
                   view->setAlpha(1.0);
                 }
               },
               {});
}

void CheckoutWebViewController::checkoutViewDidClickLink(const Url& url) {
  if (const std::shared_ptr<CheckoutDelegate> delegate = delegate_.lock()) {
    tellDelegate("checkoutDidClickLink", [&] { delegate->checkoutDidClickLink(url); });
  }
}

void CheckoutWebViewController::checkoutViewDidToggleModal(bool modalVisible) {
  pageShowsModal_ = modalVisible;
  // The bar hides while the page shows a modal of its own.
  if (platform::Screen* container = screen_->navigationContainer()) {
    container->setNavigationBarHidden(modalVisible, /*animated=*/true);
  }
}

void CheckoutWebViewController::checkoutViewDidEmitWebPixelEvent(const PixelEvent& event) {
  if (const std::shared_ptr<CheckoutDelegate> delegate = delegate_.lock()) {
    tellDelegate("checkoutDidEmitWebPixelEvent",
                 [&] { delegate->checkoutDidEmitWebPixelEvent(event); });
  }
}

void CheckoutWebViewController::checkoutViewDidFailWithError(const CheckoutError& error) {
  const std::shared_ptr<CheckoutWebViewController> self = shared_from_this();
  ++failureCount_;
  state().cache.invalidate(/*disconnect=*/true);
  if (const std::shared_ptr<CheckoutDelegate> delegate = delegate_.lock();
      delegate && !tellDelegate("checkoutDidFail", [&] { delegate->checkoutDidFail(error); })) {
    return;  // the sheet is on its way out, without recovery
  }
  if (shouldAttemptRecovery(error)) {
    presentFallbackViewController();
  } else {
    dismissSheet();
  }
}

void CheckoutWebViewController::checkoutViewDidTerminateWebContentProcess(
    const CheckoutError& error) {
  if (isOnScreen()) {
    checkoutViewDidFailWithError(error);
  }
}

bool CheckoutWebViewController::isOnScreen() const {
  const platform::Screen* container = screen_->navigationContainer();
  return (container != nullptr ? *container : *screen_).presentingScreen() != nullptr;
}

bool CheckoutWebViewController::shouldAttemptRecovery(const CheckoutError& error) {
  if (failureCount_ >= kMaxRecoveryFailureCount || CheckoutURL{checkoutURL_}.isMultipassURL()) {
    return false;
  }
  const std::shared_ptr<CheckoutDelegate> delegate = delegate_.lock();
  bool recover = false;
  return delegate &&
         tellDelegate("shouldRecoverFromError",
                      [&] { recover = delegate->shouldRecoverFromError(error); }) &&
         recover;
}

void CheckoutWebViewController::presentFallbackViewController() {
  if (progressObserver_) {
    progressObserver_->invalidate();
    progressObserver_.reset();
  }
  checkoutView_->webView().removeFromSuperview();
  std::shared_ptr<CheckoutWebView> recovery =
      state().cache.forCheckout(checkoutURL_, /*recovery=*/true, entryPoint_);
  if (!recovery) {
    dismissSheet();
    return;
  }
  checkoutView_ = std::move(recovery);
  pageShowsModal_ = false;  // the recovery page has no bridge to report one
  adoptCheckoutView();
  checkoutView_->webView().setAlpha(1.0);
  if (!screen_->isViewLoaded()) {
    return;  // viewDidLoad() lays the recovery view out and loads it
  }
  layOutCheckoutViewAndProgressBar();
  screen_->view().bringSubviewToFront(checkoutView_->webView());
  screen_->view().bringSubviewToFront(progressBar().view());
  observeProgress();
  checkoutView_->load(checkoutURL_, /*isPreload=*/false);
  progressBar().startAnimating();
}

void CheckoutWebViewController::dismissSheet() {
  platform::Screen* container = screen_->navigationContainer();
  (container != nullptr ? *container : *screen_).dismiss(/*animated=*/true, {});
}

}  // namespace vemba::checkout
