#include "checkout/events/WebPixelsEventCoding.h"

#include <string>

#include "checkout/events/ContextCoding.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kContext = "context";
constexpr std::string_view kCustomData = "customData";
constexpr std::string_view kData = "data";
constexpr std::string_view kEvent = "event";
constexpr std::string_view kId = "id";
constexpr std::string_view kName = "name";
constexpr std::string_view kTimestamp = "timestamp";
constexpr std::string_view kType = "type";

// The standard-event data object read free-form, typed. Failures of the free-form read fail the
// body; data the typed records cannot read is left out without failing.
std::optional<StandardEventData> decodeStandardData(const json::Json& value,
                                                    const json::JsonPath& path) {
  checkFreeFormObject(value, path);
  try {
    return decodeFreeFormStandardEventData(value, path);
  } catch (const json::DecodingFailure&) {
    return std::nullopt;
  }
}

// The custom-data object, with the free-form reading's types, as compact JSON text.
std::string decodeCustomDataText(const json::Json& value, const json::JsonPath& path) {
  const JsonObject customData = readJsonObject(value, path);
  try {
    return json::dumpCompact(toJson(customData));
  } catch (const json::Json::exception& error) {
    json::fail(json::DecodingError::Kind::dataCorrupted, path, error.what());
  }
}

}  // namespace

using json::Json;
using json::JsonPath;
using json::put;
using json::putOptional;
using json::requireString;

WebPixelsEventBody decodeWebPixelsEventBody(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  WebPixelsEventBody out;
  out.id = requireString(value, kId, path);
  out.name = requireString(value, kName, path);
  out.timestamp = requireString(value, kTimestamp, path);
  out.type = requireString(value, kType, path);
  out.context = json::requireField(value, kContext, path, decodeContext);
  if (out.type == kStandardEventType) {
    if (const Json* data = json::optionalKey(value, kData)) {
      out.data = decodeStandardData(*data, path / kData);
    }
  } else if (out.type == kCustomEventType) {
    out.customData = json::requireField(value, kCustomData, path, decodeCustomDataText);
  }
  return out;
}

WebPixelsEvent decodeWebPixelsEvent(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  WebPixelsEvent out;
  out.name = requireString(value, kName, path);
  out.event = json::requireField(value, kEvent, path, decodeWebPixelsEventBody);
  return out;
}

Json toJson(const WebPixelsEventBody& body) {
  Json out = Json::object();
  put(out, kId, body.id);
  put(out, kName, body.name);
  put(out, kTimestamp, body.timestamp);
  put(out, kType, body.type);
  if (body.customData) {
    std::optional<Json> parsed = json::parseJson(*body.customData);
    put(out, kCustomData, parsed ? std::move(*parsed) : Json(*body.customData));
  }
  putOptional(out, kData, body.data, [](const StandardEventData& data) { return toJson(data); });
  put(out, kContext, toJson(body.context));
  return out;
}

Json toJson(const WebPixelsEvent& event) {
  Json out = Json::object();
  put(out, kName, event.name);
  put(out, kEvent, toJson(event.event));
  return out;
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
