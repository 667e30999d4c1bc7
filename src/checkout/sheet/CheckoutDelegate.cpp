#include "vemba/checkout/CheckoutDelegate.h"

#include "platform/Application.h"
#include "platform/Services.h"

namespace vemba::checkout {

void CheckoutDelegate::checkoutDidComplete(const CheckoutCompletedEvent& /*event*/) {}

void CheckoutDelegate::checkoutDidFail(const CheckoutError& error) {
  throw error;
}

bool CheckoutDelegate::shouldRecoverFromError(const CheckoutError& error) {
  return error.isRecoverable();
}

void CheckoutDelegate::checkoutDidClickLink(const Url& url) {
  platform::Application* application = platform::application();
  if (application != nullptr && application->canOpenURL(url)) {
    application->open(url);
  }
}

void CheckoutDelegate::checkoutDidEmitWebPixelEvent(const PixelEvent& /*event*/) {}

}  // namespace vemba::checkout
