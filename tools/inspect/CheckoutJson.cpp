#include "CheckoutJson.h"

#include "vemba/checkout/EventJson.h"

namespace vemba::inspect {
namespace {

template <typename Value>
Line lineOf(const Value& value) {
  return Line::parse(checkout::toJson(value));
}

}  // namespace

Line checkoutErrorJson(const checkout::CheckoutError& error) {
  return lineOf(error);
}

Line pixelJson(const checkout::PixelEvent& pixel) {
  return lineOf(pixel);
}

Line completedJson(const checkout::CheckoutCompletedEvent& event) {
  return lineOf(event);
}

}  // namespace vemba::inspect
