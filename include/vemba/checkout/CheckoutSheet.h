// The checkout sheet as a value a host configures with callbacks, for hosts that prefer a builder
// to implementing CheckoutDelegate:
//
//   auto sheet = CheckoutSheet(url).onComplete([](const auto& e) { ... }).onCancel([] { ... });
//   from->presentScreen(sheet.viewController()->screen(), true, {});
//
// Making a sheet switches off, for the rest of the process, the dropping of the preloaded page
// on configuration changes (styling a sheet must not throw its page away).
//
// Contract: main thread only. A sheet is a cheap value: copies share one delegate wrapper and
// one view controller, so a callback set on any copy, before or after the view controller is
// made, takes effect.
#pragma once

#include <functional>
#include <memory>

#include "vemba/Url.h"
#include "vemba/checkout/CheckoutConfigurable.h"
#include "vemba/checkout/CheckoutDelegateWrapper.h"
#include "vemba/checkout/CheckoutViewController.h"

namespace vemba::checkout {

class CheckoutSheet : public CheckoutConfigurable<CheckoutSheet> {
 public:
  explicit CheckoutSheet(Url checkout);

  // Each stores its callback in the shared delegate wrapper (replacing an earlier one) and
  // returns a copy of the sheet.
  CheckoutSheet onCancel(std::function<void()> callback) const;
  CheckoutSheet onComplete(std::function<void(const CheckoutCompletedEvent&)> callback) const;
  CheckoutSheet onFail(std::function<void(const CheckoutError&)> callback) const;
  CheckoutSheet onPixelEvent(std::function<void(const PixelEvent&)> callback) const;
  CheckoutSheet onLinkClick(std::function<void(const Url&)> callback) const;

  const Url& checkoutURL() const { return checkoutURL_; }
  const std::shared_ptr<CheckoutDelegateWrapper>& delegate() const { return shared_->delegate; }

  // The sheet's view controller, made on the first call for checkoutURL() with the delegate
  // wrapper as its delegate. Every call (the first included) then points the controller's
  // checkout page controller at the wrapper again. Null when the platform has no display.
  std::shared_ptr<CheckoutViewController> viewController() const;

 private:
  struct Shared {
    std::shared_ptr<CheckoutDelegateWrapper> delegate;
    std::shared_ptr<CheckoutViewController> viewController;
  };

  Url checkoutURL_;
  std::shared_ptr<Shared> shared_;
};

}  // namespace vemba::checkout
