// Feeds arbitrary bytes to the checkout bridge's message decoder. The first byte chooses how the
// rest becomes a script message, so that every message name and every kind of body is reached:
//   0      the rest is the envelope text, posted as a string body;
//   1      the rest stands for a non-string body (which must fail without an underlying error);
//   2..6   an envelope {"name": <name>, "body": <the rest as a string>};
//   7      an envelope whose "body" is the rest inserted as raw JSON (any type, or broken);
// with <name> one of the page's message names or a name outside the vocabulary.
// Nothing may crash, hang or leak. The page's two contract violations (an "error" body that is
// an empty array, a "checkoutBlockingEvent" body other than "true"/"false") end the process by
// design; here a hook turns them into an exception, and they must come only from those names.
// Whatever is decoded also goes through the error mapping the web view applies, and the rest is
// used as a kit-to-page message body to build the dispatch script. The envelope reader must keep
// exactly what the full parse of the same text holds under "name" and "body". The "completed"
// and "error" readers never fail: each logs exactly when it falls back (once), and whatever it
// decoded must encode and decode back to the same event.
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "FakePlatform.h"
#include "checkout/BridgeEnvelope.h"
#include "checkout/CheckoutBridge.h"
#include "checkout/CheckoutErrorEventDecoder.h"
#include "checkout/CheckoutErrorMapping.h"
#include "checkout/ContractViolation.h"
#include "checkout/OSLogger.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "platform/ScriptMessage.h"

namespace {

using vemba::checkout::CheckoutBridge;
using WebEvent = CheckoutBridge::WebEvent;

constexpr std::string_view kNames[] = {"completed", "error", "checkoutBlockingEvent", "webPixels",
                                       "presented"};

std::string envelopeWithStringBody(std::string_view name, std::string_view body) {
  const nlohmann::json envelope = {{"name", name}, {"body", body}};
  return envelope.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// The parsed document reduced to what readEnvelope keeps: the root's type and, for an object, its
// "name" and "body" members with containers emptied.
std::optional<nlohmann::json> reducedDocument(std::string_view text) {
  std::optional<nlohmann::json> document = vemba::json::parseJson(text);
  if (!document) {
    return std::nullopt;
  }
  const auto emptied = [](const nlohmann::json& value) {
    return value.is_object()  ? nlohmann::json::object()
           : value.is_array() ? nlohmann::json::array()
                              : value;
  };
  if (!document->is_object()) {
    return emptied(*document);
  }
  nlohmann::json kept = nlohmann::json::object();
  for (const std::string_view key :
       {vemba::checkout::kEnvelopeNameKey, vemba::checkout::kEnvelopeBodyKey}) {
    if (const auto it = document->find(key); it != document->end()) {
      kept[std::string(key)] = emptied(*it);
    }
  }
  return kept;
}

void requireEnvelopeMatchesDocument(std::string_view text) {
  const std::optional<nlohmann::json> read = vemba::checkout::readEnvelope(text);
  const std::optional<nlohmann::json> expected = reducedDocument(text);
  if (read.has_value() != expected.has_value() ||
      (read && (read->type() != expected->type() || *read != *expected))) {
    __builtin_trap();
  }
}

// An "error" envelope read on its own. The empty array (a contract violation) is found before
// anything is logged.
void requireErrorEventOutcome(std::string_view text, const vemba::fake::RecordingLogSink& log) {
  using vemba::checkout::CheckoutErrorEventDecoder;
  const std::optional<nlohmann::json> envelope = vemba::checkout::readEnvelope(text);
  if (!envelope || !envelope->is_object() || envelope->value("name", nlohmann::json()) != "error") {
    return;
  }
  vemba::checkout::CheckoutErrorEvent event;
  try {
    event = CheckoutErrorEventDecoder::decode(*envelope);
  } catch (const vemba::checkout::ContractViolationForTesting&) {
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
        "[" + vemba::json::dumpCompact(vemba::checkout::encodeCheckoutErrorEvent(event)) + "]";
    if (!(CheckoutErrorEventDecoder::decode({{"name", "error"}, {"body", again}}) == event) ||
        !log.lines.empty()) {
      __builtin_trap();
    }
  }
}

void requireCompletedOutcome(const vemba::checkout::CheckoutCompletedEvent& event,
                             std::size_t logged) {
  if (logged > 1 || (logged == 1 && !(event == vemba::checkout::createEmptyCheckoutCompletedEvent(
                                                   std::nullopt)))) {
    __builtin_trap();
  }
  const auto again =
      vemba::json::decodeText(vemba::json::dumpCompact(vemba::checkout::toJson(event)),
                              vemba::checkout::decodeCheckoutCompletedEvent);
  if (logged == 0 && (!again || !(*again == event))) {
    __builtin_trap();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static vemba::fake::InstalledFakePlatform platform;
  static const vemba::checkout::ScopedContractViolationHook hook(
      vemba::checkout::throwContractViolationForTesting);
  vemba::checkout::OSLogger::shared().setLogLevel(vemba::checkout::LogLevel::all);
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

  if (const auto* text = std::get_if<std::string>(&message.body)) {
    requireEnvelopeMatchesDocument(*text);
    requireErrorEventOutcome(*text, platform.log);
    platform.log.lines.clear();
  }

  try {
    const auto decoded = CheckoutBridge::decode(message);
    if (!decoded) {
      if (mode == 1 && decoded.error().underlying().has_value()) {
        __builtin_trap();
      }
      if (!vemba::checkout::checkoutErrorForBridgeFailure(decoded.error()).isRecoverable()) {
        __builtin_trap();
      }
    } else {
      if (mode == 1) {
        __builtin_trap();
      }
      // A well-formed envelope with a name outside the vocabulary is always unsupported.
      if (mode == 6 && !(decoded.value() == WebEvent{WebEvent::Unsupported{"presented"}})) {
        __builtin_trap();
      }
      if (const auto* completed = std::get_if<WebEvent::CheckoutComplete>(&decoded->value)) {
        requireCompletedOutcome(completed->event, platform.log.lines.size());
      }
      (void)vemba::checkout::checkoutErrorForWebEvent(decoded.value());
    }
  } catch (const vemba::checkout::ContractViolationForTesting&) {
    if (mode >= 2 && name != "error" && name != "checkoutBlockingEvent") {
      __builtin_trap();
    }
  }

  const std::string script = CheckoutBridge::script("instrumentation", rest);
  if (script.size() < 2 * rest.size()) {
    __builtin_trap();
  }
  return 0;
}
