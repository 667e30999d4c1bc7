// Turns the page's "completed" bridge message into a CheckoutCompletedEvent.
//
// Contract: never fails. A summary that cannot be read in full (missing or non-string "body",
// invalid JSON text, any fault anywhere in the record tree) is logged once through the shared
// checkout logger and replaced by createEmptyCheckoutCompletedEvent(std::nullopt), so the host
// still receives exactly one completed event. Nothing partial is kept. Stateless; any thread.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "vemba/checkout/events/CheckoutCompletedEvent.h"

namespace vemba::checkout {

class CheckoutCompletedEventDecoder {
 public:
  CheckoutCompletedEventDecoder() = delete;

  // `envelope`: the parsed bridge message (keys "name" and "body"); "body" must be a string
  // holding the JSON text of the summary.
  static CheckoutCompletedEvent decode(const nlohmann::json& envelope);
};

}  // namespace vemba::checkout
