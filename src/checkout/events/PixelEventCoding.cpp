#include "checkout/events/PixelEventCoding.h"

#include "checkout/events/ContextCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "common/JsonFields.h"

namespace vemba::checkout {

using json::field;
using json::fields;
using json::Tag;

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

json::Json toJson(const StandardEvent& event) {
  return json::encodeRecord(event);
}

CustomEvent decodeCustomEvent(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<CustomEvent>(value, path);
}

json::Json toJson(const CustomEvent& event) {
  return json::encodeRecord(event);
}

CustomData decodeCustomData(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<CustomData>(value, path);
}

json::Json toJson(const CustomData& data) {
  return json::encodeRecord(data);
}

}  // namespace vemba::checkout
