// What a host implements to hear from a checkout sheet.
//
// Contract: every call arrives on the main thread. The kit holds the delegate weakly
// (std::weak_ptr): keep it alive for as long as the sheet is shown. Only checkoutDidCancel() is
// required; the others have the defaults described on each.
//
// Exceptions: whatever a call throws stops at the kit's boundary and never unwinds into the
// platform's callbacks (the main loop, the web engine). The kit logs it at error level, naming
// the call, and dismisses the sheet; a checkoutDidFail that throws leaves no recovery attempt.
#pragma once

#include "vemba/Export.h"
#include "vemba/Url.h"
#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/events/CheckoutCompletedEvent.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::checkout {

class VEMBA_EXPORT CheckoutDelegate {
 public:
  virtual ~CheckoutDelegate() = default;

  // The checkout completed (by the page's message or by reaching the confirmation page).
  // Default: nothing.
  virtual void checkoutDidComplete(const CheckoutCompletedEvent& event);
  // The user closed the sheet with its close control or dismissed it with the platform's
  // gesture. Dismissing a closed sheet is the host's business.
  virtual void checkoutDidCancel() = 0;
  // The checkout failed. Default: throws `error` (a CheckoutError) back into the kit, which
  // stops it there, logs it and dismisses the sheet (see above). Implement this.
  virtual void checkoutDidFail(const CheckoutError& error);
  // Whether the sheet should try once to recover from `error` with a stripped-down page.
  // Default: error.isRecoverable().
  virtual bool shouldRecoverFromError(const CheckoutError& error);
  // The page asked for a link to be opened outside the sheet. Default: opens it with the
  // platform's application when the platform says it can be opened; otherwise nothing.
  virtual void checkoutDidClickLink(const Url& url);
  // An analytics event of the page. Default: nothing.
  virtual void checkoutDidEmitWebPixelEvent(const PixelEvent& event);
};

}  // namespace vemba::checkout
