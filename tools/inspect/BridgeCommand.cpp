// vemba-inspect bridge: decodes script-message bodies read from standard input, one JSON value
// per line (a JSON string is a string body as the page posts it; any other value stands for a
// non-string body), and prints one JSON line per message: the decoded event or the decoding
// failure, with the CheckoutError the web view would report for it. Log lines go to standard
// error, filtered by --log-level (default "error"). The page's two contract violations end the
// process as they do in the library.
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "CheckoutJson.h"
#include "Commands.h"
#include "Options.h"
#include "checkout/CheckoutBridge.h"
#include "checkout/CheckoutErrorMapping.h"
#include "checkout/OSLogger.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "platform/ScriptMessage.h"

namespace vemba::inspect {
namespace {

using checkout::CheckoutBridge;
using checkout::CheckoutError;

using WebEvent = CheckoutBridge::WebEvent;

constexpr int kExitBadInput = 1;

Line optionalText(const std::optional<std::string>& text) {
  return text ? Line(*text) : Line(nullptr);
}

template <typename ErrorEvent>
Line errorEventJson(const char* name, const ErrorEvent& event) {
  Line out;
  out["event"] = name;
  out["message"] = optionalText(event.message);
  out["code"] = checkout::rawValue(event.code);
  return out;
}

Line eventJson(const WebEvent& event) {
  return std::visit(
      [](const auto& value) -> Line {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, WebEvent::CheckoutExpired>) {
          return errorEventJson("checkoutExpired", value);
        } else if constexpr (std::is_same_v<T, WebEvent::CheckoutUnavailable>) {
          return errorEventJson("checkoutUnavailable", value);
        } else if constexpr (std::is_same_v<T, WebEvent::ConfigurationError>) {
          return errorEventJson("configurationError", value);
        } else if constexpr (std::is_same_v<T, WebEvent::CheckoutComplete>) {
          return Line{{"event", "checkoutComplete"},
                      {"payload", Line(checkout::encodeCheckoutCompletedEvent(value.event))}};
        } else if constexpr (std::is_same_v<T, WebEvent::CheckoutModalToggled>) {
          return Line{{"event", "checkoutModalToggled"}, {"modalVisible", value.modalVisible}};
        } else if constexpr (std::is_same_v<T, WebEvent::WebPixels>) {
          return Line{{"event", "webPixels"}, {"payload", pixelJson(value.event)}};
        } else {
          return Line{{"event", "unsupported"}, {"name", value.name}};
        }
      },
      event.value);
}

// What the web view does with one message: decode it and, where it would tell its delegate
// about a failure, the error it would report (with the log lines it writes on the way).
Line handle(const platform::ScriptMessage& message) {
  Expected<WebEvent, checkout::BridgeError> decoded = CheckoutBridge::decode(message);
  if (!decoded) {
    Line out;
    out["error"] = "invalidBridgeEvent";
    out["description"] = decoded.error().description();
    out["checkoutError"] =
        checkoutErrorJson(checkout::checkoutErrorForBridgeFailure(decoded.error()));
    return out;
  }
  Line out = eventJson(decoded.value());
  if (const std::optional<CheckoutError> error = checkout::checkoutErrorForWebEvent(*decoded)) {
    out["checkoutError"] = checkoutErrorJson(*error);
  }
  return out;
}

}  // namespace

int runBridge(const Args& args) {
  const std::optional<Options> options = Options::parse(args, {"--log-level"}, {});
  if (!options) {
    return kExitUsage;
  }
  checkout::LogLevel level = checkout::LogLevel::error;
  if (const std::optional<std::string> raw = options->value("--log-level")) {
    const std::optional<checkout::LogLevel> parsed = checkout::logLevelFrom(*raw);
    if (!parsed) {
      std::fprintf(stderr, "vemba-inspect: unknown log level '%s'\n", raw->c_str());
      return kExitUsage;
    }
    level = *parsed;
  }
  checkout::OSLogger::shared().setLogLevel(level);

  int status = 0;
  std::string text;
  std::size_t lineNumber = 0;
  while (std::getline(std::cin, text)) {
    ++lineNumber;
    if (text.find_first_not_of(" \t\r") == std::string::npos) {
      continue;
    }
    const nlohmann::json value = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (value.is_discarded()) {
      std::fprintf(stderr, "vemba-inspect: line %zu is not a JSON value\n", lineNumber);
      status = kExitBadInput;
      continue;
    }
    platform::ScriptMessage message;
    message.name = std::string(CheckoutBridge::kMessageHandlerName);
    if (value.is_string()) {
      message.body = value.get<std::string>();
    } else {
      message.body = platform::ScriptMessage::NonStringBody{value.dump()};
    }
    printLine(handle(message));
  }
  return status;
}

}  // namespace vemba::inspect
