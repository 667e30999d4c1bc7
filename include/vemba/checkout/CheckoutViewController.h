// The checkout sheet as a host holds it: a navigation container showing the checkout page with
// its title, close control and progress line. present() makes and presents one; a CheckoutSheet
// makes one for the host to present.
//
// Contract: main thread only. Owned through std::shared_ptr; while its screen is presented the
// presentation keeps it alive as well, so a host may drop its reference once presented.
#pragma once

#include <functional>
#include <memory>

#include "vemba/Export.h"
#include "vemba/ScreenHandle.h"

namespace vemba::checkout {

class VEMBA_EXPORT CheckoutViewController {
 public:
  virtual ~CheckoutViewController() = default;

  // The navigation container to present (present() has presented it already).
  virtual std::shared_ptr<ScreenHandle> screen() const = 0;
  // Dismisses the sheet; `completion` (may be empty) runs once it is gone, or on a later turn of
  // the main queue when it was not presented.
  virtual void dismiss(bool animated, std::function<void()> completion = {}) = 0;
};

}  // namespace vemba::checkout
