// What kind of URL the checkout page navigates to: a multipass sign-in, the order confirmation
// page, a blank page, or a deep link into another application. Value type.
#pragma once

#include "vemba/Url.h"

namespace vemba::checkout {

struct CheckoutURL {
  Url url;

  // The absolute string contains "multipass".
  bool isMultipassURL() const;
  // Some path component (percent-decoded) is thank_you or thank-you, in any letter case.
  bool isConfirmationPage() const;
  // The scheme is "about", or the URL is exactly "about:blank".
  bool isBlank() const;
  // A URL with a scheme that is not blank and whose scheme is neither http nor https. Schemes
  // are compared without regard to letter case, as URL schemes are case-insensitive.
  bool isDeepLink() const;
};

}  // namespace vemba::checkout
