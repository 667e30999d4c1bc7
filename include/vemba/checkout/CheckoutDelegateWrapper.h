// A CheckoutDelegate made of five optional callbacks, used by CheckoutSheet. Each operation calls
// its callback when one is set and otherwise does nothing, except checkoutDidClickLink, which
// falls back to the default of opening the link outside the application, and
// shouldRecoverFromError, which keeps the default.
//
// Contract: main thread only. Owned through std::shared_ptr by the sheet (shared by all its
// copies) and by the sheet's view controller; callbacks may be replaced at any time.
#pragma once

#include <functional>

#include "vemba/Export.h"
#include "vemba/checkout/CheckoutDelegate.h"

namespace vemba::checkout {

class VEMBA_EXPORT CheckoutDelegateWrapper final : public CheckoutDelegate {
 public:
  std::function<void(const CheckoutCompletedEvent&)> onComplete;
  std::function<void()> onCancel;
  std::function<void(const CheckoutError&)> onFail;
  std::function<void(const PixelEvent&)> onPixelEvent;
  std::function<void(const Url&)> onLinkClick;

  void checkoutDidComplete(const CheckoutCompletedEvent& event) override;
  void checkoutDidCancel() override;
  void checkoutDidFail(const CheckoutError& error) override;
  void checkoutDidClickLink(const Url& url) override;
  void checkoutDidEmitWebPixelEvent(const PixelEvent& event) override;
};

}  // namespace vemba::checkout
