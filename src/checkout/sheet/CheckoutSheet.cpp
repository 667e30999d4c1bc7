#include "vemba/checkout/CheckoutSheet.h"

#include <string_view>

#include "checkout/config/OSLogger.h"
#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/sheet/CheckoutWebViewController.h"
#include "checkout/webview/CheckoutState.h"
#include "common/MainThread.h"
#include "platform/Services.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kNoMatchingController =
    "[CheckoutViewController#updateUIViewController]: No ViewControllers matching "
    "CheckoutWebViewController found; the sheet's callbacks are not connected";

}  // namespace

CheckoutSheet::CheckoutSheet(Url checkout)
    : checkoutURL_(std::move(checkout)), shared_(std::make_shared<Shared>()) {
  VEMBA_ASSERT_MAIN_THREAD();
  shared_->delegate = std::make_shared<CheckoutDelegateWrapper>();
  // From now on styling changes keep the preloaded page.
  state().configuration.setInvalidateOnConfigurationChange(false);
}

CheckoutSheet CheckoutSheet::onCancel(std::function<void()> callback) const {
  VEMBA_ASSERT_MAIN_THREAD();
  shared_->delegate->onCancel = std::move(callback);
  return *this;
}

CheckoutSheet CheckoutSheet::onComplete(
    std::function<void(const CheckoutCompletedEvent&)> callback) const {
  VEMBA_ASSERT_MAIN_THREAD();
  shared_->delegate->onComplete = std::move(callback);
  return *this;
}

CheckoutSheet CheckoutSheet::onFail(std::function<void(const CheckoutError&)> callback) const {
  VEMBA_ASSERT_MAIN_THREAD();
  shared_->delegate->onFail = std::move(callback);
  return *this;
}

CheckoutSheet CheckoutSheet::onPixelEvent(std::function<void(const PixelEvent&)> callback) const {
  VEMBA_ASSERT_MAIN_THREAD();
  shared_->delegate->onPixelEvent = std::move(callback);
  return *this;
}

CheckoutSheet CheckoutSheet::onLinkClick(std::function<void(const Url&)> callback) const {
  VEMBA_ASSERT_MAIN_THREAD();
  shared_->delegate->onLinkClick = std::move(callback);
  return *this;
}

std::shared_ptr<CheckoutViewController> CheckoutSheet::viewController() const {
  VEMBA_ASSERT_MAIN_THREAD();
  const auto* made = dynamic_cast<const CheckoutViewControllerImpl*>(shared_->viewController.get());
  if (made == nullptr || made->hasLeftTheScreen()) {
    platform::Ui* ui = platform::ui();
    if (ui == nullptr) {
      return nullptr;
    }
    std::shared_ptr<CheckoutViewControllerImpl> fresh =
        CheckoutViewControllerImpl::create(*ui, checkoutURL_, shared_->delegate);
    if (!fresh) {
      return nullptr;
    }
    // The controller holds its delegate weakly; the wrapper lives as long as the controller.
    fresh->keepDelegateAlive(shared_->delegate);
    shared_->viewController = fresh;
  }

  // Point the first checkout page controller at the wrapper again.
  const auto* container =
      dynamic_cast<const CheckoutViewControllerImpl*>(shared_->viewController.get());
  std::shared_ptr<CheckoutWebViewController> page;
  if (container != nullptr) {
    for (const auto& child : container->childControllers()) {
      if ((page = std::dynamic_pointer_cast<CheckoutWebViewController>(child))) {
        break;
      }
    }
  }
  if (page) {
    page->setDelegate(shared_->delegate);
  } else {
    OSLogger::shared().error(kNoMatchingController);
  }
  return shared_->viewController;
}

std::shared_ptr<CheckoutViewController> CheckoutSheet::present(
    std::shared_ptr<ScreenHandle> from) const {
  VEMBA_ASSERT_MAIN_THREAD();
  return detail::presentCheckout(checkoutURL_, std::move(from),
                                 [this](platform::Ui& /*ui*/) { return viewController(); });
}

}  // namespace vemba::checkout
