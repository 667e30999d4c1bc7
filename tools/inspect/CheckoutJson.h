// The JSON the inspector prints for the checkout's host-facing values, in the shapes
// vemba/checkout/EventJson.h gives hosts.
#pragma once

#include <nlohmann/json.hpp>

#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/events/CheckoutCompletedEvent.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::inspect {

using Line = nlohmann::ordered_json;

Line checkoutErrorJson(const checkout::CheckoutError& error);
Line pixelJson(const checkout::PixelEvent& pixel);
Line completedJson(const checkout::CheckoutCompletedEvent& event);

}  // namespace vemba::inspect
