// Turns the page's "webPixels" bridge message into a PixelEvent.
//
// Contract: the message's "body" must be a string holding the JSON text of the payload. The
// payload's "type" decides the kind, compared exactly: "standard" gives a StandardEvent,
// "custom" a CustomEvent, anything else no event (and no failure). A missing or non-string body,
// invalid JSON text or a payload that fails to decode is reported as the error; nothing is
// logged. Standard event data the typed records cannot read leaves the event without data.
// Stateless; any thread.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>

#include "common/DecodingError.h"
#include "vemba/Expected.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::checkout {

class WebPixelsEventDecoder {
 public:
  WebPixelsEventDecoder() = delete;

  // `envelope`: the parsed bridge message (keys "name" and "body").
  static Expected<std::optional<PixelEvent>, json::DecodingError> decode(
      const nlohmann::json& envelope);
};

}  // namespace vemba::checkout
