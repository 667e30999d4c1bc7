// The JSON the inspector prints for the checkout's host-facing values: a CheckoutError and a
// pixel event. One shape for every command that prints them.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>

#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::inspect {

using Line = nlohmann::ordered_json;

// {"case": …, "message": …, "code": …, "recoverable": …}
Line checkoutErrorJson(const checkout::CheckoutError& error);
// {"standardEvent": …} or {"customEvent": …} as the library encodes them; null when absent.
Line pixelJson(const std::optional<checkout::PixelEvent>& pixel);

}  // namespace vemba::inspect
