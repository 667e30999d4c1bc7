#include "checkout/bridge/InstrumentationPayload.h"

#include <nlohmann/json.hpp>

#include "checkout/bridge/BridgeError.h"
#include "checkout/config/OSLogger.h"
#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kHistogram = "histogram";
constexpr std::string_view kTypeName = "InstrumentationType";
constexpr std::string_view kEncodeFailureLabel = "toJson()";
constexpr const char* kEncodingErrorDomain = "EncodingError";

std::optional<InstrumentationType> instrumentationTypeFrom(std::string_view raw) {
  return raw == kHistogram ? std::optional(InstrumentationType::histogram) : std::nullopt;
}

// Every tag is a string: a missing tag is not null.
struct TagsCodec {
  using Tags = std::map<std::string, std::string>;
  static Tags decode(const json::Json& value, const json::JsonPath& path) {
    json::requireObject(value, path);
    Tags tags;
    for (const auto& [key, tag] : value.items()) {
      tags.emplace(key, json::decodeString(tag, path / key));
    }
    return tags;
  }
  static json::Json encode(const Tags& tags) { return tags; }
};

}  // namespace

std::string_view rawValue(InstrumentationType /*type*/) {
  return kHistogram;
}

constexpr auto jsonFields(json::Tag<InstrumentationPayload> /*record*/) {
  using TypeCodec =
      json::RawValueCodec<InstrumentationType, rawValue, instrumentationTypeFrom, kTypeName>;
  return json::fields(json::field("name", &InstrumentationPayload::name),
                      json::field("value", &InstrumentationPayload::value),
                      json::field<TypeCodec>("type", &InstrumentationPayload::type),
                      json::field<TagsCodec>("tags", &InstrumentationPayload::tags));
}

constexpr auto jsonFields(json::Tag<SdkToWebEvent<InstrumentationPayload>> /*record*/) {
  return json::fields(json::field("detail", &SdkToWebEvent<InstrumentationPayload>::detail));
}

std::optional<std::string> toJson(const SdkToWebEvent<InstrumentationPayload>& event) {
  try {
    return json::dumpCompact(json::encodeRecord(event));
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
  return json::decodeText(text, json::decodeRecord<SdkToWebEvent<InstrumentationPayload>>);
}

}  // namespace vemba::checkout
