// The web pixel (analytics) events the checkout page reports: a standard event with typed
// commerce data, or a custom event whose data the host parses itself. Event names are the page's
// own and are not interpreted. Plain values; every field is optional.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "vemba/Export.h"
#include "vemba/checkout/events/Context.h"
#include "vemba/checkout/events/StandardEventData.h"

namespace vemba::checkout {

struct VEMBA_EXPORT StandardEvent {
  std::optional<Context> context;
  std::optional<std::string> id;
  std::optional<std::string> name;
  std::optional<std::string> timestamp;
  // Absent when the page sent no data or data the typed records could not read.
  std::optional<StandardEventData> data;
  bool operator==(const StandardEvent&) const = default;
};

struct VEMBA_EXPORT CustomEvent {
  std::optional<Context> context;
  // Compact JSON text of the merchant's custom-data object, for the host to parse. Nulls the
  // page sent are not in it; key order is the kit's, not the page's.
  std::optional<std::string> customData;
  std::optional<std::string> id;
  std::optional<std::string> name;
  std::optional<std::string> timestamp;
  bool operator==(const CustomEvent&) const = default;
};

// One web pixel event; the alternatives keep this order.
using PixelEvent = std::variant<CustomEvent, StandardEvent>;

// A named record that carries nothing.
struct VEMBA_EXPORT CustomData {
  bool operator==(const CustomData&) const = default;
};

}  // namespace vemba::checkout
