#include "checkout/events/PixelEventCoding.h"

#include "checkout/events/ContextCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kContext = "context";
constexpr std::string_view kCustomData = "customData";
constexpr std::string_view kData = "data";
constexpr std::string_view kId = "id";
constexpr std::string_view kName = "name";
constexpr std::string_view kTimestamp = "timestamp";

constexpr auto encode = [](const auto& record) { return toJson(record); };

}  // namespace

using json::Json;
using json::JsonPath;
using json::optionalField;
using json::optionalString;
using json::putOptional;

StandardEvent decodeStandardEvent(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  StandardEvent out;
  out.context = optionalField(value, kContext, path, decodeContext);
  out.id = optionalString(value, kId, path);
  out.name = optionalString(value, kName, path);
  out.timestamp = optionalString(value, kTimestamp, path);
  out.data = optionalField(value, kData, path, decodeStandardEventData);
  return out;
}

Json toJson(const StandardEvent& event) {
  Json out = Json::object();
  putOptional(out, kContext, event.context, encode);
  putOptional(out, kId, event.id);
  putOptional(out, kName, event.name);
  putOptional(out, kTimestamp, event.timestamp);
  putOptional(out, kData, event.data, encode);
  return out;
}

CustomEvent decodeCustomEvent(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  CustomEvent out;
  out.context = optionalField(value, kContext, path, decodeContext);
  out.customData = optionalString(value, kCustomData, path);
  out.id = optionalString(value, kId, path);
  out.name = optionalString(value, kName, path);
  out.timestamp = optionalString(value, kTimestamp, path);
  return out;
}

Json toJson(const CustomEvent& event) {
  Json out = Json::object();
  putOptional(out, kContext, event.context, encode);
  putOptional(out, kCustomData, event.customData);
  putOptional(out, kId, event.id);
  putOptional(out, kName, event.name);
  putOptional(out, kTimestamp, event.timestamp);
  return out;
}

CustomData decodeCustomData(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  return CustomData{};
}

Json toJson(const CustomData& /*data*/) {
  return Json::object();
}

}  // namespace vemba::checkout
