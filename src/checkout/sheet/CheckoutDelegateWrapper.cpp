#include "vemba/checkout/CheckoutDelegateWrapper.h"

#include "common/MainThread.h"

namespace vemba::checkout {

void CheckoutDelegateWrapper::checkoutDidComplete(const CheckoutCompletedEvent& event) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (onComplete) {
    onComplete(event);
  }
}

void CheckoutDelegateWrapper::checkoutDidCancel() {
  VEMBA_ASSERT_MAIN_THREAD();
  if (onCancel) {
    onCancel();
  }
}

void CheckoutDelegateWrapper::checkoutDidFail(const CheckoutError& error) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (onFail) {
    onFail(error);
  }
}

void CheckoutDelegateWrapper::checkoutDidClickLink(const Url& url) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (onLinkClick) {
    onLinkClick(url);
  } else {
    CheckoutDelegate::checkoutDidClickLink(url);
  }
}

void CheckoutDelegateWrapper::checkoutDidEmitWebPixelEvent(const PixelEvent& event) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (onPixelEvent) {
    onPixelEvent(event);
  }
}

}  // namespace vemba::checkout
