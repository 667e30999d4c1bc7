#include "checkout/events/PixelEventCoding.h"

#include <array>
#include <string_view>
#include <variant>

#include "checkout/events/ContextCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "common/JsonFields.h"

namespace vemba::checkout {

using json::field;
using json::fields;
using json::Tag;

namespace {
// In the order of PixelEvent's alternatives.
constexpr std::string_view kPixelEventTypeName = "PixelEvent";
constexpr std::array<std::string_view, 2> kPixelEventCases = {"customEvent", "standardEvent"};
static_assert(std::variant_size_v<PixelEvent> == kPixelEventCases.size());
}  // namespace

constexpr auto jsonFields(Tag<StandardEvent> /*record*/) {
  using R = StandardEvent;
  return fields(field("context", &R::context), field("id", &R::id), field("name", &R::name),
                field("timestamp", &R::timestamp), field("data", &R::data));
}

constexpr auto jsonFields(Tag<CustomEvent> /*record*/) {
  using R = CustomEvent;
  return fields(field("context", &R::context), field("customData", &R::customData),
                field("id", &R::id), field("name", &R::name), field("timestamp", &R::timestamp));
}

// Carries nothing: any object reads as it, and it writes as {}.
constexpr auto jsonFields(Tag<CustomData> /*record*/) {
  return fields();
}

StandardEvent decodeStandardEvent(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<StandardEvent>(value, path);
}

json::Json encodeStandardEvent(const StandardEvent& event) {
  return json::encodeRecord(event);
}

CustomEvent decodeCustomEvent(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<CustomEvent>(value, path);
}

json::Json encodeCustomEvent(const CustomEvent& event) {
  return json::encodeRecord(event);
}

CustomData decodeCustomData(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<CustomData>(value, path);
}

json::Json encodeCustomData(const CustomData& data) {
  return json::encodeRecord(data);
}

PixelEvent decodePixelEvent(const json::Json& value, const json::JsonPath& path) {
  const std::size_t index =
      json::decodeSingleCase(value, path, kPixelEventCases, kPixelEventTypeName);
  const json::Json& event = value.begin().value();
  const json::JsonPath eventPath = path / kPixelEventCases[index];
  if (index == 0) {  // customEvent
    return decodeCustomEvent(event, eventPath);
  }
  return decodeStandardEvent(event, eventPath);
}

json::Json encodePixelEvent(const PixelEvent& event) {
  return json::encodeSingleCase(
      kPixelEventCases[event.index()],
      std::visit([](const auto& value) { return json::encodeRecord(value); }, event));
}

}  // namespace vemba::checkout
