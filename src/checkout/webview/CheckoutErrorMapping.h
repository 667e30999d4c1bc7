// Which failure becomes which CheckoutError, with which message, code and recoverability, and
// the diagnostic line each writes through the shared OSLogger. The checkout web view calls these
// where it detects a failure and hands the result to its delegate (when it still has one).
// Main thread; stateless.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "checkout/bridge/BridgeError.h"
#include "checkout/bridge/CheckoutBridge.h"
#include "platform/WebProcessTermination.h"
#include "vemba/Error.h"
#include "vemba/checkout/CheckoutError.h"

namespace vemba::checkout {

// A decoded page message. For the three error events, logs "<prefix><message or "No message">,
// code: <case name>" (the expired event at info level, the others at error level) and returns the
// error to report: checkoutExpired stays checkoutExpired (not recoverable); checkoutUnavailable
// and configurationError both become checkoutUnavailable with a client-error code (recoverable
// and not recoverable respectively). Absent messages take the default texts. Any other event:
// absent, nothing logged.
std::optional<CheckoutError> checkoutErrorForWebEvent(const CheckoutBridge::WebEvent& event);

// A page message that could not be decoded: logs "Error decoding bridge script message: " plus
// the error's description at error level, and returns a recoverable sdkError carrying it.
CheckoutError checkoutErrorForBridgeFailure(const BridgeError& error);

// The first line written for an erroneous response of the checkout document, at debug level:
// "Handling response for URL: <absolute URL or "unknown URL">, status code: <status>".
void logHandlingResponse(const std::optional<std::string>& absoluteUrl, std::int64_t statusCode);

// The HTTP status of the checkout document. Below 400: absent, nothing logged. Otherwise logs
// the status's debug line and returns: 401 and 404 checkoutUnavailable (status phrase, HTTP
// code, not recoverable); 410 checkoutExpired ("Checkout has expired.", cartExpired, not
// recoverable); 500-599 checkoutUnavailable recoverable unless `isRecovery`; any other
// checkoutUnavailable not recoverable.
std::optional<CheckoutError> checkoutErrorForHttpStatus(std::int64_t statusCode, bool isRecovery);

// A navigation failure after the document started loading. Logs it at debug level; a cancelled
// URL load (URL error domain, code -999) is ignored (absent, with a second debug line); anything
// else is an sdkError carrying `error`, recoverable only in a normal (non-recovery) web view.
std::optional<CheckoutError> checkoutErrorForNavigationFailure(const Error& error, bool isRecovery);

// The web content process of the shown page ended: logs "WebView content process terminated: "
// plus the reason's sentence at error level, and returns an sdkError whose underlying error is
// the web engine's (kWebContentProcessErrorDomain, kWebContentProcessTerminatedCode, that
// sentence), recoverable only in a normal (non-recovery) web view, as a navigation failure is.
CheckoutError checkoutErrorForWebProcessTermination(platform::WebProcessTermination reason,
                                                    bool isRecovery);

}  // namespace vemba::checkout
