// The checkout sheet as a value a host configures with callbacks, for hosts that prefer a builder
// to implementing CheckoutDelegate. On Linux:
//
//   const auto sheet = vemba::checkout::CheckoutSheet(checkoutUrl)
//                          .onComplete([](const vemba::checkout::CheckoutCompletedEvent&) {})
//                          .onCancel([] {});
//   sheet.present(vemba::topScreenForWindow(window));
//
// Making a sheet switches off, for the rest of the process, the dropping of the preloaded page
// on configuration changes (styling a sheet must not throw its page away).
//
// Contract: main thread only. A sheet is a cheap value: copies share one delegate wrapper, so a
// callback set on any copy, before or after a presentation, takes effect. Every presentation
// shows a fresh view controller (a page, a bridge and a recovery of its own); the delegate
// wrapper lives as long as the newest of them.
#pragma once

#include <functional>
#include <memory>

#include "vemba/Export.h"
#include "vemba/ScreenHandle.h"
#include "vemba/Url.h"
#include "vemba/checkout/CheckoutConfigurable.h"
#include "vemba/checkout/CheckoutDelegateWrapper.h"
#include "vemba/checkout/CheckoutViewController.h"

namespace vemba::checkout {

class VEMBA_EXPORT CheckoutSheet : public CheckoutConfigurable<CheckoutSheet> {
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

  // The view controller of the sheet's next (or current) presentation: the one made by an
  // earlier call while it has not yet been presented or is still on screen, otherwise a new one
  // for checkoutURL() with the delegate wrapper as its delegate. Every call then points the
  // controller's checkout page controller at the wrapper again. Null when the platform has no
  // display.
  std::shared_ptr<CheckoutViewController> viewController() const;

  // Presents the sheet (animated) from `from`, e.g. the top screen of a host window, and returns
  // its view controller. Null, with an error line in the log, when `from` is null or the
  // platform has no display. Nothing is presented while this sheet is still on screen.
  std::shared_ptr<CheckoutViewController> present(std::shared_ptr<ScreenHandle> from) const;

 private:
  struct Shared {
    std::shared_ptr<CheckoutDelegateWrapper> delegate;
    std::shared_ptr<CheckoutViewController> viewController;
  };

  Url checkoutURL_;
  std::shared_ptr<Shared> shared_;
};

}  // namespace vemba::checkout
