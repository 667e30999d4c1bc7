// Feeds arbitrary bytes to the "webPixels" message decoder, either as a whole bridge message
// (when the input is a JSON object) or as the message's body text. Nothing may crash; a decoded
// payload must encode and decode back to itself, a custom event's data must be JSON text, and a
// public event must survive its own encoding.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "FakePlatform.h"
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vemba::json::Json;
  namespace checkout = vemba::checkout;
  static vemba::fake::InstalledFakePlatform platform;

  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::optional<Json> message = vemba::json::parseJson(text);
  if (!message || !message->is_object()) {
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
