// The payload of a "webPixels" bridge message, as the page sends it, before it becomes a public
// PixelEvent. Internal records.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vemba/checkout/events/Context.h"
#include "vemba/checkout/events/StandardEventData.h"

namespace vemba::checkout {

// The values of WebPixelsEventBody::type that make an event; compared exactly. Any other type
// is accepted and yields no event.
inline constexpr std::string_view kStandardEventType = "standard";
inline constexpr std::string_view kCustomEventType = "custom";

struct WebPixelsEventBody {
  std::string id;
  std::string name;
  std::string timestamp;
  std::string type;
  // Custom events only: compact JSON text of the page's custom-data object.
  std::optional<std::string> customData;
  // Standard events only: the event data, sent as a free-form object, typed. Absent when the
  // page sent none or data the typed records cannot read.
  std::optional<StandardEventData> data;
  Context context;
  bool operator==(const WebPixelsEventBody&) const = default;
};

struct WebPixelsEvent {
  std::string name;  // as sent at the outer level; not used to classify
  WebPixelsEventBody event;
  bool operator==(const WebPixelsEvent&) const = default;
};

}  // namespace vemba::checkout
