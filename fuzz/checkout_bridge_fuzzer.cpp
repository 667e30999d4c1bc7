// Feeds arbitrary bytes to the checkout bridge's message decoder. The first byte chooses how the
// rest becomes a script message, so that every message name and every kind of body is reached:
//   0      the rest is the envelope text, posted as a string body;
//   1      the rest stands for a non-string body (which must fail without an underlying error);
//   2..6   an envelope {"name": <name>, "body": <the rest as a string>};
//   7      an envelope whose "body" is the rest inserted as raw JSON (any type, or broken);
// with <name> one of the page's message names or a name outside the vocabulary. The byte's next
// three bits choose the public record the rest is also read as.
// Nothing may crash, hang or leak, nor exhaust the stack: seeds nest 100,000 deep. The page's two
// contract violations (an "error" body that is an empty array, a "checkoutBlockingEvent" body other
// than "true"/"false") end the process by design; here a hook turns them into an exception, and
// they must come only from those names. Whatever is decoded also goes through the error mapping the
// web view applies, and the rest is used as a kit-to-page message body to build the dispatch
// script. What the readers behind the bridge must hold:
// - the envelope reader keeps exactly what the full parse of the same text holds under "name"
//   and "body";
// - a failure of the bridge never logs; the "completed" and "error" readers never fail, and log
//   exactly when they fall back (once); the pixel reader never logs;
// - whatever is decoded (an event, a pixel payload) encodes and decodes back to itself, and a
//   custom pixel's data is JSON text; what hosts see (completed event, pixel event, the error the
//   web view would report) round-trips through the public toJson and fromJson, and the rest read
//   by the public fromJson as the chosen record fails with a DecodingError or round-trips;
// - any object of the input is read free-form both ways (into JSON, and into JsonValue written
//   back), and the two readings agree.
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "FakePlatform.h"
#include "checkout/bridge/BridgeEnvelope.h"
#include "checkout/bridge/CheckoutBridge.h"
#include "checkout/bridge/CheckoutErrorEventDecoder.h"
#include "checkout/config/ContractViolation.h"
#include "checkout/config/OSLogger.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/WebPixelsEventCoding.h"
#include "checkout/webview/CheckoutErrorMapping.h"
#include "platform/ScriptMessage.h"
#include "vemba/checkout/EventJson.h"

namespace {

namespace checkout = vemba::checkout;
using checkout::CheckoutBridge;
using WebEvent = CheckoutBridge::WebEvent;

constexpr std::string_view kNames[] = {"completed", "error", "checkoutBlockingEvent", "webPixels",
                                       "presented"};

std::string envelopeWithStringBody(std::string_view name, std::string_view body) {
  const nlohmann::json envelope = {{"name", name}, {"body", body}};
  return envelope.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// A value hosts see, written with the public toJson and read back with the public fromJson.
template <typename T>
void requirePublicRoundTrip(const T& value) {
  const vemba::Expected<T, vemba::Error> again = checkout::fromJson<T>(checkout::toJson(value));
  if (!again || !(*again == value)) {
    __builtin_trap();
  }
}

// Any text read as the `which`-th T (modulo their number): a DecodingError, or a value that
// round-trips.
template <typename... T>
void requirePublicReading(unsigned which, std::string_view text) {
  unsigned index = 0;
  const auto readAs = [&]<typename U>(std::type_identity<U> /*type*/) {
    if (index++ != which % sizeof...(T)) {
      return;
    }
    const vemba::Expected<U, vemba::Error> read = checkout::fromJson<U>(text);
    if (read) {
      requirePublicRoundTrip(*read);
    } else if (read.error().domain != vemba::json::kDecodingErrorDomain) {
      __builtin_trap();
    }
  };
  (readAs(std::type_identity<T>{}), ...);
}

// The parsed document reduced to what readEnvelope keeps: the root's type and, for an object, its
// "name" and "body" members with containers emptied.
nlohmann::json reducedDocument(const nlohmann::json& document) {
  const auto emptied = [](const nlohmann::json& value) {
    return value.is_object()  ? nlohmann::json::object()
           : value.is_array() ? nlohmann::json::array()
                              : value;
  };
  if (!document.is_object()) {
    return emptied(document);
  }
  nlohmann::json kept = nlohmann::json::object();
  for (const std::string_view key : {checkout::kEnvelopeNameKey, checkout::kEnvelopeBodyKey}) {
    if (const auto it = document.find(key); it != document.end()) {
      kept[std::string(key)] = emptied(*it);
    }
  }
  return kept;
}

// Standard-event data is typed from the free-form reading written as JSON (readFreeFormObject).
// That JSON must be what reading into JsonValue and writing it back gives, down to the sign of
// zeros (compared through the text), and the two reads must fail alike.
void requireSameFreeFormReading(const nlohmann::json& data) {
  const vemba::json::JsonPath root;
  std::optional<nlohmann::json> direct;
  std::optional<vemba::json::DecodingError> directError;
  try {
    direct = checkout::readFreeFormObject(data, root);
  } catch (const vemba::json::DecodingFailure& failure) {
    directError = failure.error();
  }
  try {
    const nlohmann::json reference = checkout::toJson(checkout::readJsonObject(data, root));
    if (!direct || *direct != reference || direct->dump() != reference.dump()) {
      __builtin_trap();
    }
  } catch (const vemba::json::DecodingFailure& failure) {
    if (!directError || directError->description() != failure.error().description()) {
      __builtin_trap();
    }
  }
}

// The checks on the text alone: the envelope reader against the full parse, the free-form
// readings of an object, and an "error" envelope read on its own (the empty array, a contract
// violation, is found before anything is logged).
void requireTextOutcome(std::string_view text, const vemba::fake::RecordingLogSink& log) {
  using checkout::CheckoutErrorEventDecoder;
  const std::optional<nlohmann::json> envelope = checkout::readEnvelope(text);
  const std::optional<nlohmann::json> document = vemba::json::parseJson(text);
  if (envelope.has_value() != document.has_value() ||
      (envelope && (envelope->type() != reducedDocument(*document).type() ||
                    *envelope != reducedDocument(*document)))) {
    __builtin_trap();
  }
  if (document && document->is_object()) {
    requireSameFreeFormReading(*document);
  }
  if (!envelope || !envelope->is_object() || envelope->value("name", nlohmann::json()) != "error") {
    return;
  }
  checkout::CheckoutErrorEvent event;
  try {
    event = CheckoutErrorEventDecoder::decode(*envelope);
  } catch (const vemba::ContractViolationForTesting&) {
    if (!log.lines.empty()) {
      __builtin_trap();
    }
    return;
  }
  if (log.lines.size() > 1 ||
      (log.lines.size() == 1 && !(event == CheckoutErrorEventDecoder::fallbackEvent()))) {
    __builtin_trap();
  }
  if (log.lines.empty()) {
    const std::string again =
        "[" + vemba::json::dumpCompact(checkout::encodeCheckoutErrorEvent(event)) + "]";
    if (!(CheckoutErrorEventDecoder::decode({{"name", "error"}, {"body", again}}) == event) ||
        !log.lines.empty()) {
      __builtin_trap();
    }
  }
}

// A decoded message, with the number of lines logged while it was decoded.
void requireEventOutcome(const WebEvent& decoded, std::string_view text, std::size_t logged) {
  if (const auto* completed = std::get_if<WebEvent::CheckoutComplete>(&decoded.value)) {
    if (logged > 1 ||
        (logged == 1 &&
         !(completed->event == checkout::createEmptyCheckoutCompletedEvent(std::nullopt)))) {
      __builtin_trap();
    }
    requirePublicRoundTrip(completed->event);
  }
  const auto* pixels = std::get_if<WebEvent::WebPixels>(&decoded.value);
  if (pixels == nullptr) {
    return;
  }
  if (logged != 0) {
    __builtin_trap();
  }
  const nlohmann::json envelope = *checkout::readEnvelope(text);
  const auto payload =
      vemba::json::decodeText(envelope["body"].get<std::string>(), checkout::decodeWebPixelsEvent);
  if (!payload) {
    __builtin_trap();  // the bridge decoded the same text
  }
  const auto again =
      vemba::json::decodeText(vemba::json::dumpCompact(checkout::encodeWebPixelsEvent(*payload)),
                              checkout::decodeWebPixelsEvent);
  if (!again || !(*again == *payload)) {
    __builtin_trap();
  }
  if (!pixels->event) {
    return;
  }
  requirePublicRoundTrip(*pixels->event);
  const auto* custom = std::get_if<checkout::CustomEvent>(&*pixels->event);
  if (custom != nullptr && (!custom->customData || !vemba::json::parseJson(*custom->customData))) {
    __builtin_trap();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static vemba::fake::InstalledFakePlatform platform;
  static const vemba::ScopedContractViolationHook hook(vemba::throwContractViolationForTesting);
  checkout::OSLogger::shared().setLogLevel(checkout::LogLevel::all);
  platform.log.lines.clear();
  if (size == 0) {
    return 0;
  }

  const unsigned mode = data[0] % 8U;
  const std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  std::string_view name;
  vemba::platform::ScriptMessage message;
  message.name = std::string(CheckoutBridge::kMessageHandlerName);
  if (mode == 0) {
    message.body = std::string(rest);
  } else if (mode == 1) {
    message.body = vemba::platform::ScriptMessage::NonStringBody{std::string(rest)};
  } else if (mode <= 6) {
    name = kNames[mode - 2];
    message.body = envelopeWithStringBody(name, rest);
  } else {
    name = kNames[(size % 5)];
    message.body = "{\"name\":\"" + std::string(name) + "\",\"body\":" + std::string(rest) + "}";
  }
  const auto* text = std::get_if<std::string>(&message.body);
  if (text != nullptr) {
    requireTextOutcome(*text, platform.log);
    platform.log.lines.clear();
  }

  try {
    const auto decoded = CheckoutBridge::decode(message);
    const std::size_t logged = platform.log.lines.size();
    if (!decoded) {
      if (logged != 0 || (mode == 1 && decoded.error().underlying().has_value())) {
        __builtin_trap();
      }
      const checkout::CheckoutError error =
          checkout::checkoutErrorForBridgeFailure(decoded.error());
      if (!error.isRecoverable()) {
        __builtin_trap();
      }
      requirePublicRoundTrip(error);
    } else {
      if (text == nullptr) {
        __builtin_trap();
      }
      // A well-formed envelope with a name outside the vocabulary is always unsupported.
      if (mode == 6 && !(decoded.value() == WebEvent{WebEvent::Unsupported{"presented"}})) {
        __builtin_trap();
      }
      requireEventOutcome(decoded.value(), *text, logged);
      if (const auto error = checkout::checkoutErrorForWebEvent(decoded.value())) {
        requirePublicRoundTrip(*error);
      }
    }
  } catch (const vemba::ContractViolationForTesting&) {
    if (mode >= 2 && name != "error" && name != "checkoutBlockingEvent") {
      __builtin_trap();
    }
  }

  requirePublicReading<checkout::CheckoutCompletedEvent, checkout::PixelEvent, checkout::Context,
                       checkout::StandardEventData, checkout::CustomData, checkout::CheckoutError,
                       checkout::CheckoutErrorCode, checkout::CheckoutUnavailable>(data[0] / 8U,
                                                                                   rest);

  const std::string script = CheckoutBridge::script("instrumentation", rest);
  if (script.size() < 2 * rest.size()) {
    __builtin_trap();
  }
  return 0;
}
