// Feeds arbitrary bytes to the decoder of the checkout page's "error" message. An even first
// byte posts the rest as the body string; an odd one inserts it as the raw JSON value of "body"
// (any type), falling back to a string when it is not JSON. The decoder must never fail or
// crash: it logs exactly one line when it falls back, and anything it decoded must encode and
// decode back to the same event. An empty array is the page's contract violation (the process
// ends by design); a hook turns it into an exception here.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FakePlatform.h"
#include "checkout/CheckoutErrorEventDecoder.h"
#include "checkout/ContractViolation.h"
#include "checkout/OSLogger.h"
#include "common/JsonDecoding.h"
#include "vemba/checkout/CheckoutErrorCode.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vemba::checkout::CheckoutErrorEventDecoder;
  using vemba::json::Json;
  static vemba::fake::InstalledFakePlatform platform;
  static const vemba::checkout::ScopedContractViolationHook hook(
      vemba::checkout::throwContractViolationForTesting);
  platform.log.lines.clear();
  if (size == 0) {
    return 0;
  }

  const std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  Json envelope = {{"name", "error"}};
  std::optional<Json> raw;
  if ((data[0] & 1U) != 0) {
    raw = vemba::json::parseJson(rest);
  }
  envelope["body"] = raw ? std::move(*raw) : Json(std::string(rest));

  vemba::checkout::CheckoutErrorEvent event;
  try {
    event = CheckoutErrorEventDecoder::decode(envelope);
  } catch (const vemba::checkout::ContractViolationForTesting&) {
    if (!platform.log.lines.empty()) {
      __builtin_trap();
    }
    return 0;
  }
  if (platform.log.lines.size() > 1) {
    __builtin_trap();
  }
  if (platform.log.lines.size() == 1) {
    if (!(event == CheckoutErrorEventDecoder::fallbackEvent())) {
      __builtin_trap();
    }
    return 0;
  }
  const std::string again =
      "[" + vemba::json::dumpCompact(vemba::checkout::encodeCheckoutErrorEvent(event)) + "]";
  const Json roundTripEnvelope = {{"name", "error"}, {"body", again}};
  if (!(CheckoutErrorEventDecoder::decode(roundTripEnvelope) == event) ||
      !platform.log.lines.empty()) {
    __builtin_trap();
  }
  (void)vemba::checkout::checkoutErrorCodeFrom(event.code);
  return 0;
}
