// Feeds arbitrary bytes to the "webPixels" message decoder, either as a whole bridge message
// (when the input is a JSON object) or as the message's body text. Nothing may crash; a decoded
// payload must encode and decode back to itself, a custom event's data must be JSON text, and a
// public event must survive its own encoding. An input object that reads free-form is also typed
// as standard-event data both directly and through the free-form value and its JSON: the two
// must agree.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "FakePlatform.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/PixelEventCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
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

template <typename Decode>
std::optional<vemba::checkout::StandardEventData> typedData(Decode decode) {
  try {
    return decode();
  } catch (const vemba::json::DecodingFailure&) {
    return std::nullopt;
  }
}

// Typing free-form data directly gives what typing its free-form value's JSON gives, including
// the sign of zeros (compared through the encoded text).
void requireSameTyping(const vemba::json::Json& data) {
  namespace checkout = vemba::checkout;
  const vemba::json::JsonPath root;
  try {
    checkout::checkFreeFormObject(data, root);
  } catch (const vemba::json::DecodingFailure&) {
    return;
  }
  const auto direct =
      typedData([&] { return checkout::decodeFreeFormStandardEventData(data, root); });
  const auto reference = typedData([&] {
    return checkout::decodeStandardEventData(checkout::toJson(checkout::readJsonObject(data, root)),
                                             root);
  });
  if (direct.has_value() != reference.has_value()) {
    __builtin_trap();
  }
  if (direct && (!(*direct == *reference) ||
                 checkout::toJson(*direct).dump() != checkout::toJson(*reference).dump())) {
    __builtin_trap();
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
    requireSameTyping(*message);
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
