// Feeds arbitrary bytes to the "webPixels" message decoder, either as a whole bridge message
// (when the input is a JSON object) or as the message's body text. Nothing may crash; a decoded
// payload must encode and decode back to itself, a custom event's data must be JSON text, and a
// public event must survive its own encoding. An input object is also read free-form both ways
// (into JSON, and into JsonValue written back): the two must agree.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "FakePlatform.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/PixelEventCoding.h"
#include "checkout/events/WebPixelsEventCoding.h"
#include "checkout/events/WebPixelsEventDecoder.h"
#include "common/JsonDecoding.h"

namespace {

template <typename T, typename Decode>
void requireRoundTrip(const T& value, Decode decode) {
  const std::string text = vemba::json::dumpCompact(vemba::checkout::toJson(value));
  const auto again = vemba::json::decodeText(text, decode);
  if (!again || !(*again == value)) {
    __builtin_trap();
  }
}

// Standard-event data is typed from the free-form reading written as JSON (readFreeFormObject).
// That JSON must be what reading into JsonValue and writing it back gives, down to the sign of
// zeros (compared through the text), and the two reads must fail alike.
void requireSameFreeFormReading(const vemba::json::Json& data) {
  namespace checkout = vemba::checkout;
  const vemba::json::JsonPath root;
  std::optional<vemba::json::Json> direct;
  std::optional<vemba::json::DecodingError> directError;
  try {
    direct = checkout::readFreeFormObject(data, root);
  } catch (const vemba::json::DecodingFailure& failure) {
    directError = failure.error();
  }
  try {
    const vemba::json::Json reference = checkout::toJson(checkout::readJsonObject(data, root));
    if (!direct || *direct != reference || direct->dump() != reference.dump()) {
      __builtin_trap();
    }
  } catch (const vemba::json::DecodingFailure& failure) {
    if (!directError || directError->description() != failure.error().description()) {
      __builtin_trap();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vemba::json::Json;
  namespace checkout = vemba::checkout;
  static vemba::fake::InstalledFakePlatform platform;

  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::optional<Json> message = vemba::json::parseJson(text);
  if (message && message->is_object()) {
    requireSameFreeFormReading(*message);
  } else {
    message = Json{{"name", "webPixels"}, {"body", std::string(text)}};
  }
  const auto decoded = checkout::WebPixelsEventDecoder::decode(*message);
  if (!platform.log.lines.empty()) {
    __builtin_trap();  // pixel decoding never logs
  }
  if (!decoded) {
    (void)decoded.error().description();
    return 0;
  }
  if (const Json* body = message->contains("body") ? &(*message)["body"] : nullptr;
      body != nullptr && body->is_string()) {
    const auto payload =
        vemba::json::decodeText(body->get<std::string>(), checkout::decodeWebPixelsEvent);
    if (!payload) {
      __builtin_trap();  // the decoder succeeded on the same text
    }
    requireRoundTrip(*payload, checkout::decodeWebPixelsEvent);
  }
  if (!decoded->has_value()) {
    return 0;
  }
  if (const auto* custom = std::get_if<checkout::CustomEvent>(&**decoded)) {
    if (!custom->customData || !vemba::json::parseJson(*custom->customData)) {
      __builtin_trap();
    }
    requireRoundTrip(*custom, checkout::decodeCustomEvent);
  } else {
    requireRoundTrip(std::get<checkout::StandardEvent>(**decoded), checkout::decodeStandardEvent);
  }
  return 0;
}
