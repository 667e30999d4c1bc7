#include "checkout/bridge/InstrumentationPayload.h"

#include <nlohmann/json.hpp>

#include "checkout/bridge/BridgeError.h"
#include "checkout/config/OSLogger.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kDetailKey = "detail";
constexpr std::string_view kNameKey = "name";
constexpr std::string_view kValueKey = "value";
constexpr std::string_view kTypeKey = "type";
constexpr std::string_view kTagsKey = "tags";
constexpr std::string_view kHistogram = "histogram";
constexpr std::string_view kEncodeFailureLabel = "toJson()";
constexpr const char* kEncodingErrorDomain = "EncodingError";

InstrumentationPayload decodePayload(const json::Json& value, const json::JsonPath& path) {
  const json::Json& object = json::requireObject(value, path);
  InstrumentationPayload payload;
  payload.name = json::requireString(object, kNameKey, path);
  payload.value = json::requireInt(object, kValueKey, path);
  const std::string type = json::requireString(object, kTypeKey, path);
  if (type != kHistogram) {
    json::fail(json::DecodingError::Kind::dataCorrupted, path / kTypeKey,
               "Cannot initialize InstrumentationType from invalid String value " + type);
  }
  const json::JsonPath tagsPath = path / kTagsKey;
  const json::Json& tags = json::requireObject(json::requireKey(object, kTagsKey, path), tagsPath);
  for (const auto& [key, tag] : tags.items()) {
    payload.tags.emplace(key, json::decodeString(tag, tagsPath / key));
  }
  return payload;
}

}  // namespace

std::string_view rawValue(InstrumentationType /*type*/) {
  return kHistogram;
}

json::Json encodeInstrumentationPayload(const InstrumentationPayload& payload) {
  json::Json object = json::Json::object();
  object[std::string(kNameKey)] = payload.name;
  object[std::string(kValueKey)] = payload.value;
  object[std::string(kTypeKey)] = std::string(rawValue(payload.type));
  json::Json tags = json::Json::object();
  for (const auto& [key, tag] : payload.tags) {
    tags[key] = tag;
  }
  object[std::string(kTagsKey)] = std::move(tags);
  return object;
}

json::Json encodeSdkToWebEvent(const SdkToWebEvent<InstrumentationPayload>& event) {
  json::Json object = json::Json::object();
  object[std::string(kDetailKey)] = encodeInstrumentationPayload(event.detail);
  return object;
}

std::optional<std::string> toJson(const SdkToWebEvent<InstrumentationPayload>& event) {
  try {
    return json::dumpCompact(encodeSdkToWebEvent(event));
  } catch (const json::Json::exception& failure) {
    const BridgeError error = BridgeError::unencodableInstrumentation(
        Error{kEncodingErrorDomain, failure.id, failure.what()});
    OSLogger::writeUnfiltered(platform::LogSeverity::error,
                              std::string(kEncodeFailureLabel) + " " + error.debugDescription());
    return std::nullopt;
  }
}

Expected<SdkToWebEvent<InstrumentationPayload>, json::DecodingError>
decodeInstrumentationSdkToWebEvent(std::string_view text) {
  return json::decodeText(text, [](const json::Json& value, const json::JsonPath& path) {
    const json::Json& object = json::requireObject(value, path);
    return SdkToWebEvent<InstrumentationPayload>{
        decodePayload(json::requireKey(object, kDetailKey, path), path / kDetailKey)};
  });
}

}  // namespace vemba::checkout
