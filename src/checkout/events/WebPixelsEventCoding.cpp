#include "checkout/events/WebPixelsEventCoding.h"

#include <string>

#include "checkout/events/ContextCoding.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

using json::field;
using json::fields;
using json::Json;
using json::JsonPath;

constexpr std::string_view kCustomData = "customData";
constexpr std::string_view kData = "data";

// What every body has, read in this order before the fields that depend on its type.
constexpr auto kBodyFields = fields(
    field("id", &WebPixelsEventBody::id), field("name", &WebPixelsEventBody::name),
    field("timestamp", &WebPixelsEventBody::timestamp), field("type", &WebPixelsEventBody::type),
    field("context", &WebPixelsEventBody::context));

// The standard-event data object, read free-form, written back and typed. Failures of the
// free-form read fail the body; data the typed records cannot read is left out without failing.
std::optional<StandardEventData> decodeStandardData(const Json& value, const JsonPath& path) {
  const Json written = readFreeFormObject(value, path);
  try {
    return decodeStandardEventData(written, path);
  } catch (const json::DecodingFailure&) {
    return std::nullopt;
  }
}

// The custom-data object, with the free-form reading's types, as compact JSON text.
std::string decodeCustomDataText(const Json& value, const JsonPath& path) {
  const Json customData = readFreeFormObject(value, path);
  try {
    return json::dumpCompact(customData);
  } catch (const Json::exception& error) {
    json::fail(json::DecodingError::Kind::dataCorrupted, path, error.what());
  }
}

}  // namespace

constexpr auto jsonFields(json::Tag<WebPixelsEvent> /*record*/) {
  using BodyCodec =
      json::FunctionCodec<WebPixelsEventBody, decodeWebPixelsEventBody, encodeWebPixelsEventBody>;
  return fields(field("name", &WebPixelsEvent::name),
                field<BodyCodec>("event", &WebPixelsEvent::event));
}

WebPixelsEventBody decodeWebPixelsEventBody(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  WebPixelsEventBody out;
  json::decodeFields(value, path, kBodyFields, out);
  if (out.type == kStandardEventType) {
    if (const Json* data = json::optionalKey(value, kData)) {
      out.data = decodeStandardData(*data, path / kData);
    }
  } else if (out.type == kCustomEventType) {
    out.customData =
        decodeCustomDataText(json::requireKey(value, kCustomData, path), path / kCustomData);
  }
  return out;
}

WebPixelsEvent decodeWebPixelsEvent(const Json& value, const JsonPath& path) {
  return json::decodeRecord<WebPixelsEvent>(value, path);
}

Json encodeWebPixelsEventBody(const WebPixelsEventBody& body) {
  Json out = Json::object();
  json::encodeFields(body, kBodyFields, out);
  if (body.customData) {
    std::optional<Json> parsed = json::parseJson(*body.customData);
    out[std::string(kCustomData)] = parsed ? std::move(*parsed) : Json(*body.customData);
  }
  if (body.data) {
    out[std::string(kData)] = encodeStandardEventData(*body.data);
  }
  return out;
}

Json encodeWebPixelsEvent(const WebPixelsEvent& event) {
  return json::encodeRecord(event);
}

StandardEvent standardEventFrom(WebPixelsEventBody&& body) {
  StandardEvent event;
  event.context = std::move(body.context);
  event.id = std::move(body.id);
  event.name = std::move(body.name);
  event.timestamp = std::move(body.timestamp);
  event.data = std::move(body.data);
  return event;
}

}  // namespace vemba::checkout
