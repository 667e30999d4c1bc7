#include "checkout/bridge/CheckoutCompletedEventDecoder.h"

#include <string>
#include <string_view>

#include "checkout/bridge/BridgeEnvelope.h"
#include "checkout/config/OSLogger.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kDecodingErrorMessage = "Error decoding \"completed\" event - ";

Expected<CheckoutCompletedEvent, json::DecodingError> decodeEnvelope(const json::Json& envelope) {
  std::string_view body;
  try {
    body = requireEnvelopeString(envelope, kEnvelopeBodyKey);
  } catch (const json::DecodingFailure& failure) {
    return Unexpected{failure.error()};
  }
  // The body is UTF-8 already: the envelope's parser validated it, so unlike on platforms whose
  // strings must be converted first, there is no "no bytes" outcome to handle here.
  return json::decodeText(body, decodeCheckoutCompletedEvent);
}

}  // namespace

CheckoutCompletedEvent CheckoutCompletedEventDecoder::decode(const nlohmann::json& envelope) {
  Expected<CheckoutCompletedEvent, json::DecodingError> decoded = decodeEnvelope(envelope);
  if (decoded) {
    return std::move(decoded).value();
  }
  OSLogger::shared().error(std::string(kDecodingErrorMessage) + decoded.error().description());
  return createEmptyCheckoutCompletedEvent(std::nullopt);
}

}  // namespace vemba::checkout
