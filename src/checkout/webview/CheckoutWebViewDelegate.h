// What the checkout web view reports upwards, to the controller that shows it.
//
// Contract: called on the main thread; the web view holds its delegate weakly and skips every
// call once the delegate is gone.
#pragma once

#include "vemba/Url.h"
#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/events/CheckoutCompletedEvent.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::checkout {

class CheckoutWebViewDelegate {
 public:
  virtual ~CheckoutWebViewDelegate() = default;
  // Part of the interface for implementers; the web view itself never calls it.
  virtual void checkoutViewDidStartNavigation() = 0;
  virtual void checkoutViewDidCompleteCheckout(const CheckoutCompletedEvent& event) = 0;
  virtual void checkoutViewDidFinishNavigation() = 0;
  virtual void checkoutViewDidClickLink(const Url& url) = 0;
  virtual void checkoutViewDidFailWithError(const CheckoutError& error) = 0;
  virtual void checkoutViewDidToggleModal(bool modalVisible) = 0;
  virtual void checkoutViewDidEmitWebPixelEvent(const PixelEvent& event) = 0;
  // The page's web content process ended; the view has already left the preload cache. `error`
  // is the failure it amounts to for a sheet on screen (see checkoutErrorForWebProcessTermination).
  virtual void checkoutViewDidTerminateWebContentProcess(const CheckoutError& error) = 0;
};

}  // namespace vemba::checkout
