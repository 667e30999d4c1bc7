#include "CheckoutJson.h"

#include "checkout/CheckoutErrorCoding.h"
#include "checkout/events/PixelEventCoding.h"

namespace vemba::inspect {

Line checkoutErrorJson(const checkout::CheckoutError& error) {
  return Line(checkout::encodeCheckoutError(error));
}

Line pixelJson(const std::optional<checkout::PixelEvent>& pixel) {
  return pixel ? Line(checkout::encodePixelEvent(*pixel)) : Line(nullptr);
}

}  // namespace vemba::inspect
