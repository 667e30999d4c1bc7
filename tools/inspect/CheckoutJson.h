// The JSON the inspector prints for the checkout's host-facing values: a CheckoutError and a
// pixel event, in the shapes vemba/checkout/EventJson.h gives hosts.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>

#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::inspect {

using Line = nlohmann::ordered_json;

// {"case": …, "code": …, "message": …, "recoverable": …}; an sdkError has "underlying" instead
// of "message" and "code".
Line checkoutErrorJson(const checkout::CheckoutError& error);
// {"standardEvent": …} or {"customEvent": …}; null when absent.
Line pixelJson(const std::optional<checkout::PixelEvent>& pixel);

}  // namespace vemba::inspect
