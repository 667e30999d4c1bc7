// The JavaScript bridge between the kit and the checkout page.
//
// Page to kit: the page posts a string to the channel "mobileCheckoutSdk"; the string is JSON
// text of an envelope {"name": ..., "body": ...} whose body, where it carries data, is itself a
// string of JSON text. decode() turns one such message into a WebEvent.
// Kit to page: sendMessage() evaluates a script that calls the page's dispatcher, now or once
// the page's bridge is ready.
//
// Contract: stateless; all operations are static and meant for the main thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "checkout/bridge/BridgeError.h"
#include "checkout/bridge/InstrumentationPayload.h"
#include "vemba/Expected.h"
#include "vemba/checkout/CheckoutErrorCode.h"
#include "vemba/checkout/events/CheckoutCompletedEvent.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::platform {
struct ScriptMessage;
class ScriptEvaluator;
}  // namespace vemba::platform

namespace vemba::checkout {

// How the web view talks to its page; the web view holds the implementation it uses (normally
// CheckoutBridge::asProtocol()), so that tests can substitute a recording one.
class CheckoutBridgeProtocol {
 public:
  virtual ~CheckoutBridgeProtocol() = default;
  virtual void instrument(platform::ScriptEvaluator& webView,
                          const InstrumentationPayload& payload) const = 0;
  virtual void sendMessage(platform::ScriptEvaluator& webView, std::string_view messageName,
                           std::optional<std::string_view> messageBody) const = 0;
};

// The payload shared by the three cases of an "error" message (CheckoutBridge::WebEvent's
// CheckoutExpired, CheckoutUnavailable and ConfigurationError); the kind keeps them distinct
// types. At namespace scope because clang 14 fails to compile a member class template with
// default member initialisers used this way.
enum class WebEventErrorKind { expired, unavailable, configuration };
template <WebEventErrorKind kind>
struct WebEventErrorPayload {
  std::optional<std::string> message;
  CheckoutErrorCode code = CheckoutErrorCode::unknown;
  friend bool operator==(const WebEventErrorPayload&, const WebEventErrorPayload&) = default;
};

class CheckoutBridge {
 public:
  CheckoutBridge() = delete;

  // The channel the page posts to.
  static constexpr std::string_view kMessageHandlerName = "mobileCheckoutSdk";
  // The messages the page sends (exact, case-sensitive).
  static constexpr std::string_view kCompletedMessage = "completed";
  static constexpr std::string_view kErrorMessage = "error";
  static constexpr std::string_view kBlockingMessage = "checkoutBlockingEvent";
  static constexpr std::string_view kWebPixelsMessage = "webPixels";
  // The two bodies of kBlockingMessage: the page shows a dialog of its own, or no longer does.
  static constexpr std::string_view kBlockingTrue = "true";
  static constexpr std::string_view kBlockingFalse = "false";
  // The messages the kit sends.
  static constexpr std::string_view kPresentedMessage = "presented";
  static constexpr std::string_view kInstrumentationMessage = "instrumentation";

  // One decoded page message. Case order: checkoutExpired, checkoutUnavailable,
  // configurationError, checkoutComplete, checkoutModalToggled, webPixels, unsupported.
  struct WebEvent {
    using CheckoutExpired = WebEventErrorPayload<WebEventErrorKind::expired>;
    using CheckoutUnavailable = WebEventErrorPayload<WebEventErrorKind::unavailable>;
    using ConfigurationError = WebEventErrorPayload<WebEventErrorKind::configuration>;
    struct CheckoutComplete {
      CheckoutCompletedEvent event;
      friend bool operator==(const CheckoutComplete&, const CheckoutComplete&) = default;
    };
    struct CheckoutModalToggled {
      bool modalVisible = false;
      friend bool operator==(const CheckoutModalToggled&, const CheckoutModalToggled&) = default;
    };
    struct WebPixels {
      std::optional<PixelEvent> event;
      friend bool operator==(const WebPixels&, const WebPixels&) = default;
    };
    struct Unsupported {
      std::string name;
      friend bool operator==(const Unsupported&, const Unsupported&) = default;
    };
    using Value = std::variant<CheckoutExpired, CheckoutUnavailable, ConfigurationError,
                               CheckoutComplete, CheckoutModalToggled, WebPixels, Unsupported>;

    Value value;
    friend bool operator==(const WebEvent&, const WebEvent&) = default;
  };

  // Decodes a page message. Fails with invalidBridgeEvent: with no underlying error when the body
  // is not a string; with the decoding error when the text is not a valid envelope (not JSON,
  // no string "name", no string "body" for "checkoutBlockingEvent", a pixel event that cannot
  // be decoded). A malformed "error" body is not a failure: it is logged and ends as
  // unsupported("error"). Ends the process (contractViolation) on an "error" body that is an
  // empty array and on a "checkoutBlockingEvent" body other than "true" or "false".
  static Expected<WebEvent, BridgeError> decode(const platform::ScriptMessage& message);
  // The same for the envelope's JSON text as the page posted it.
  static Expected<WebEvent, BridgeError> decode(std::string_view envelopeText);

  // Evaluates in `webView` the script that dispatches `messageName` (and `messageBody`, JSON
  // text produced by the kit, when given) to the page. Never reports failure.
  static void sendMessage(platform::ScriptEvaluator& webView, std::string_view messageName,
                          std::optional<std::string_view> messageBody = std::nullopt);
  // The exact script sendMessage() evaluates.
  static std::string script(std::string_view messageName,
                            std::optional<std::string_view> messageBody);

  // Sends {"detail": payload} as an "instrumentation" message; sends nothing (and prints the
  // failure) when the payload cannot be encoded.
  static void instrument(platform::ScriptEvaluator& webView, const InstrumentationPayload& payload);

  static const CheckoutBridgeProtocol& asProtocol();
};

}  // namespace vemba::checkout
