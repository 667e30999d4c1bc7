#include "checkout/webview/CheckoutErrorMapping.h"

#include "checkout/config/OSLogger.h"
#include "checkout/errors/HttpStatusPhrase.h"
#include "platform/UrlErrorCode.h"
#include "platform/WebProcessTermination.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kExpiredReceived = "Checkout expired error received: ";
constexpr std::string_view kUnavailableReceived = "Checkout unavailable error received: ";
constexpr std::string_view kConfigurationReceived = "Configuration error received: ";
constexpr std::string_view kNoMessage = "No message";
constexpr std::string_view kCodeSeparator = ", code: ";

constexpr std::string_view kExpiredDefault = "Checkout has expired.";
constexpr std::string_view kUnavailableDefault = "Checkout unavailable.";
constexpr std::string_view kConfigurationDefault = "Storefront configuration error.";

constexpr std::string_view kBridgeFailureLog = "Error decoding bridge script message: ";

constexpr std::string_view kHandlingResponse = "Handling response for URL: ";
constexpr std::string_view kUnknownUrl = "unknown URL";
constexpr std::string_view kStatusCodeSeparator = ", status code: ";
constexpr std::string_view kUnauthorizedLine = "Unauthorized access (401)";
constexpr std::string_view kNotFoundLine = "Not found (404)";
constexpr std::string_view kGoneLine = "Gone (410)";
constexpr std::string_view kServerErrorLine = "Server error (5xx)";
constexpr std::string_view kOtherStatusSuffix = " error received";

constexpr std::string_view kNavigationFailed = "WebView navigation failed with error: description:";
constexpr std::string_view kNavigationDomain = " domain:";
constexpr std::string_view kNavigationCode = " code:";
constexpr std::string_view kCancelledIgnored =
    "Ignoring cancelled URL redirect. code:NSURLErrorCancelled";

constexpr std::string_view kProcessTerminated = "WebView content process terminated: ";

std::string receivedLine(std::string_view prefix, const std::optional<std::string>& message,
                         CheckoutErrorCode code) {
  std::string line(prefix);
  line.append(message ? std::string_view(*message) : kNoMessage);
  line.append(kCodeSeparator).append(caseName(code));
  return line;
}

std::string messageOr(const std::optional<std::string>& message, std::string_view fallback) {
  return message ? *message : std::string(fallback);
}

}  // namespace

std::optional<CheckoutError> checkoutErrorForWebEvent(const CheckoutBridge::WebEvent& event) {
  using WebEvent = CheckoutBridge::WebEvent;
  if (const auto* expired = std::get_if<WebEvent::CheckoutExpired>(&event.value)) {
    OSLogger::shared().info(receivedLine(kExpiredReceived, expired->message, expired->code));
    return CheckoutError::checkoutExpired(messageOr(expired->message, kExpiredDefault),
                                          expired->code, /*recoverable=*/false);
  }
  if (const auto* unavailable = std::get_if<WebEvent::CheckoutUnavailable>(&event.value)) {
    OSLogger::shared().error(
        receivedLine(kUnavailableReceived, unavailable->message, unavailable->code));
    return CheckoutError::checkoutUnavailable(messageOr(unavailable->message, kUnavailableDefault),
                                              CheckoutUnavailable::clientError(unavailable->code),
                                              /*recoverable=*/true);
  }
  if (const auto* configuration = std::get_if<WebEvent::ConfigurationError>(&event.value)) {
    OSLogger::shared().error(
        receivedLine(kConfigurationReceived, configuration->message, configuration->code));
    // Delivered as unavailable, never as configurationError.
    return CheckoutError::checkoutUnavailable(
        messageOr(configuration->message, kConfigurationDefault),
        CheckoutUnavailable::clientError(configuration->code), /*recoverable=*/false);
  }
  return std::nullopt;
}

CheckoutError checkoutErrorForBridgeFailure(const BridgeError& error) {
  OSLogger::shared().error(std::string(kBridgeFailureLog) + error.description());
  return CheckoutError::sdkError(error.toError(), /*recoverable=*/true);
}

void logHandlingResponse(const std::optional<std::string>& absoluteUrl, std::int64_t statusCode) {
  std::string line(kHandlingResponse);
  line.append(absoluteUrl ? std::string_view(*absoluteUrl) : kUnknownUrl);
  line.append(kStatusCodeSeparator).append(std::to_string(statusCode));
  OSLogger::shared().debug(line);
}

std::optional<CheckoutError> checkoutErrorForHttpStatus(std::int64_t statusCode, bool isRecovery) {
  constexpr std::int64_t kFirstErrorStatus = 400;
  if (statusCode < kFirstErrorStatus) {
    return std::nullopt;
  }
  const std::string phrase(httpStatusPhrase(statusCode));
  const CheckoutUnavailable httpCode = CheckoutUnavailable::httpError(statusCode);
  OSLogger& log = OSLogger::shared();
  if (statusCode == 401) {
    log.debug(kUnauthorizedLine);
    return CheckoutError::checkoutUnavailable(phrase, httpCode, /*recoverable=*/false);
  }
  if (statusCode == 404) {
    log.debug(kNotFoundLine);
    return CheckoutError::checkoutUnavailable(phrase, httpCode, /*recoverable=*/false);
  }
  if (statusCode == 410) {
    log.debug(kGoneLine);
    return CheckoutError::checkoutExpired(std::string(kExpiredDefault),
                                          CheckoutErrorCode::cartExpired, /*recoverable=*/false);
  }
  if (statusCode >= 500 && statusCode <= 599) {
    log.debug(kServerErrorLine);
    // A recovery view is the last attempt: its server errors are final.
    return CheckoutError::checkoutUnavailable(phrase, httpCode, /*recoverable=*/!isRecovery);
  }
  log.debug(std::to_string(statusCode) + std::string(kOtherStatusSuffix));
  return CheckoutError::checkoutUnavailable(phrase, httpCode, /*recoverable=*/false);
}

std::optional<CheckoutError> checkoutErrorForNavigationFailure(const Error& error,
                                                               bool isRecovery) {
  OSLogger& log = OSLogger::shared();
  std::string line(kNavigationFailed);
  line.append(error.description)
      .append(kNavigationDomain)
      .append(error.domain)
      .append(kNavigationCode)
      .append(std::to_string(error.code));
  log.debug(line);
  if (error.domain == platform::kUrlErrorDomain &&
      error.code == platform::UrlErrorCode::cancelled) {
    log.debug(kCancelledIgnored);
    return std::nullopt;
  }
  return CheckoutError::sdkError(error, /*recoverable=*/!isRecovery);
}

CheckoutError checkoutErrorForWebProcessTermination(platform::WebProcessTermination reason,
                                                    bool isRecovery) {
  const std::string_view description = platform::describe(reason);
  OSLogger::shared().error(std::string(kProcessTerminated) + std::string(description));
  return CheckoutError::sdkError(
      Error{std::string(platform::kWebContentProcessErrorDomain),
            platform::kWebContentProcessTerminatedCode, std::string(description)},
      /*recoverable=*/!isRecovery);
}

}  // namespace vemba::checkout
