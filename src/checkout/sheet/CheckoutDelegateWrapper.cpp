#include "vemba/checkout/CheckoutDelegateWrapper.h"

namespace vemba::checkout {

void CheckoutDelegateWrapper::checkoutDidComplete(const CheckoutCompletedEvent& event) {
  if (onComplete) {
    onComplete(event);
  }
}

void CheckoutDelegateWrapper::checkoutDidCancel() {
  if (onCancel) {
    onCancel();
  }
}

void CheckoutDelegateWrapper::checkoutDidFail(const CheckoutError& error) {
  if (onFail) {
    onFail(error);
  }
}

void CheckoutDelegateWrapper::checkoutDidClickLink(const Url& url) {
  if (onLinkClick) {
    onLinkClick(url);
  } else {
    CheckoutDelegate::checkoutDidClickLink(url);
  }
}

void CheckoutDelegateWrapper::checkoutDidEmitWebPixelEvent(const PixelEvent& event) {
  if (onPixelEvent) {
    onPixelEvent(event);
  }
}

}  // namespace vemba::checkout
