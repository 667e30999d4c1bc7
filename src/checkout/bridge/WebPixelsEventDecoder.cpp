#include "checkout/bridge/WebPixelsEventDecoder.h"

#include <string_view>

#include "checkout/bridge/BridgeEnvelope.h"
#include "checkout/events/WebPixelsEventCoding.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

std::optional<PixelEvent> classify(WebPixelsEvent&& payload) {
  WebPixelsEventBody& body = payload.event;
  if (body.type == kStandardEventType) {
    return PixelEvent(standardEventFrom(std::move(body)));
  }
  if (body.type == kCustomEventType) {
    CustomEvent event;
    event.context = std::move(body.context);
    event.customData = std::move(body.customData);
    event.id = std::move(body.id);
    event.name = std::move(body.name);
    event.timestamp = std::move(body.timestamp);
    return PixelEvent(std::move(event));
  }
  return std::nullopt;
}

}  // namespace

Expected<std::optional<PixelEvent>, json::DecodingError> WebPixelsEventDecoder::decode(
    const nlohmann::json& envelope) {
  std::string_view body;
  try {
    body = requireEnvelopeString(envelope, kEnvelopeBodyKey);
  } catch (const json::DecodingFailure& failure) {
    return Unexpected{failure.error()};
  }
  // The body is UTF-8 already (the envelope's parser validated it): there is no "no bytes"
  // outcome to handle before decoding.
  Expected<WebPixelsEvent, json::DecodingError> payload =
      json::decodeText(body, decodeWebPixelsEvent);
  if (!payload) {
    return Unexpected{payload.error()};
  }
  return classify(std::move(payload).value());
}

}  // namespace vemba::checkout
