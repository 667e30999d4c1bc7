#include "checkout/sheet/CheckoutViewControllerImpl.h"

#include "checkout/sheet/CheckoutWebViewController.h"
#include "common/MainThread.h"
#include "platform/Ui.h"

namespace vemba::checkout {

std::shared_ptr<CheckoutViewControllerImpl> CheckoutViewControllerImpl::create(
    platform::Ui& ui, const Url& checkout, std::weak_ptr<CheckoutDelegate> delegate,
    std::optional<MetaData::EntryPoint> entryPoint) {
  std::shared_ptr<CheckoutWebViewController> root =
      CheckoutWebViewController::create(ui, checkout, std::move(delegate), entryPoint);
  if (!root) {
    return nullptr;
  }
  root->notifyPresented();
  std::shared_ptr<CheckoutViewControllerImpl> controller(new CheckoutViewControllerImpl());
  controller->root_ = root;
  controller->screen_ = ui.createNavigationScreen(root->screen());
  controller->screen_->setDelegate(controller);
  // A sheet the user can swipe (or, on a desktop, Escape) away.
  controller->screen_->setModalPresentationStyle(platform::ModalPresentationStyle::automatic);
  controller->screen_->setPresentationDelegate(root);
  return controller;
}

void CheckoutViewControllerImpl::viewWillAppear() {
  VEMBA_ASSERT_MAIN_THREAD();
  appeared_ = true;
}

void CheckoutViewControllerImpl::dismiss(bool animated, std::function<void()> completion) {
  VEMBA_ASSERT_MAIN_THREAD();
  screen_->dismiss(animated, std::move(completion));
}

std::vector<std::shared_ptr<platform::ScreenDelegate>>
CheckoutViewControllerImpl::childControllers() const {
  return {root_};
}

}  // namespace vemba::checkout
