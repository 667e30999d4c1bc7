// Feeds arbitrary bytes to the "completed" message decoder, either as a whole bridge message
// (when the input is a JSON object) or as the message's body text. The decoder must never fail
// or crash; it logs exactly when it falls back to the empty event, and whatever it decoded must
// encode and decode back to the same event.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FakePlatform.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "checkout/events/CheckoutCompletedEventDecoder.h"
#include "common/JsonDecoding.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vemba::json::Json;
  static vemba::fake::InstalledFakePlatform platform;
  platform.log.lines.clear();

  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::optional<Json> message = vemba::json::parseJson(text);
  if (!message || !message->is_object()) {
    message = Json{{"name", "completed"}, {"body", std::string(text)}};
  }
  const vemba::checkout::CheckoutCompletedEvent event =
      vemba::checkout::CheckoutCompletedEventDecoder::decode(*message);

  if (platform.log.lines.size() > 1) {
    __builtin_trap();
  }
  if (platform.log.lines.size() == 1) {
    if (!(event == vemba::checkout::createEmptyCheckoutCompletedEvent(std::nullopt))) {
      __builtin_trap();
    }
    return 0;
  }
  const std::string again = vemba::json::dumpCompact(vemba::checkout::toJson(event));
  const auto roundTrip =
      vemba::json::decodeText(again, vemba::checkout::decodeCheckoutCompletedEvent);
  if (!roundTrip || !(*roundTrip == event)) {
    __builtin_trap();
  }
  return 0;
}
