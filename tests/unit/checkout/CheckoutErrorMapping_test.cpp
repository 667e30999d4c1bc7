#include "checkout/CheckoutErrorMapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"
#include "checkout/OSLogger.h"
#include "platform/UrlErrorCode.h"

namespace vemba::checkout {
namespace {

using ::testing::ElementsAre;
using WebEvent = CheckoutBridge::WebEvent;

class CheckoutErrorMappingTest : public testing::CheckoutTest {
 protected:
  CheckoutErrorMappingTest() { OSLogger::shared().setLogLevel(LogLevel::all); }
};

struct WebEventCase {
  WebEvent event;
  std::optional<CheckoutError> expected;
  std::vector<std::string> log;
};

TEST_F(CheckoutErrorMappingTest, BridgeErrorEvents) {
  const std::vector<WebEventCase> cases = {
      {WebEvent{WebEvent::CheckoutExpired{"Gone", CheckoutErrorCode::cartExpired}},
       CheckoutError::checkoutExpired("Gone", CheckoutErrorCode::cartExpired, false),
       {"info|[VembaCheckoutKit] (Info) - Checkout expired error received: Gone, code: "
        "cartExpired"}},
      {WebEvent{WebEvent::CheckoutExpired{std::nullopt, CheckoutErrorCode::unknown}},
       CheckoutError::checkoutExpired("Checkout has expired.", CheckoutErrorCode::unknown, false),
       {"info|[VembaCheckoutKit] (Info) - Checkout expired error received: No message, code: "
        "unknown"}},
      {WebEvent{WebEvent::CheckoutUnavailable{std::nullopt, CheckoutErrorCode::unknown}},
       CheckoutError::checkoutUnavailable(
           "Checkout unavailable.", CheckoutUnavailable::clientError(CheckoutErrorCode::unknown),
           true),
       {"error|[VembaCheckoutKit] (Error) - Checkout unavailable error received: No message, "
        "code: unknown"}},
      {WebEvent{WebEvent::CheckoutUnavailable{"Down", CheckoutErrorCode::invalidCart}},
       CheckoutError::checkoutUnavailable(
           "Down", CheckoutUnavailable::clientError(CheckoutErrorCode::invalidCart), true),
       {"error|[VembaCheckoutKit] (Error) - Checkout unavailable error received: Down, code: "
        "invalidCart"}},
      // A configuration error reaches the host as an unrecoverable "unavailable".
      {WebEvent{WebEvent::ConfigurationError{std::nullopt,
                                             CheckoutErrorCode::storefrontPasswordRequired}},
       CheckoutError::checkoutUnavailable(
           "Storefront configuration error.",
           CheckoutUnavailable::clientError(CheckoutErrorCode::storefrontPasswordRequired), false),
       {"error|[VembaCheckoutKit] (Error) - Configuration error received: No message, code: "
        "storefrontPasswordRequired"}},
      {WebEvent{WebEvent::CheckoutModalToggled{true}}, std::nullopt, {}},
      {WebEvent{WebEvent::Unsupported{"error"}}, std::nullopt, {}},
      {WebEvent{WebEvent::WebPixels{std::nullopt}}, std::nullopt, {}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    platform.log.lines.clear();
    EXPECT_EQ(checkoutErrorForWebEvent(cases[i].event), cases[i].expected) << "case " << i;
    EXPECT_EQ(logLines(), cases[i].log) << "case " << i;
  }
}

TEST_F(CheckoutErrorMappingTest, UndecodableMessageIsARecoverableSdkError) {
  const BridgeError bridgeError = BridgeError::invalidBridgeEvent(std::nullopt);
  const CheckoutError error = checkoutErrorForBridgeFailure(bridgeError);
  EXPECT_EQ(error, CheckoutError::sdkError(bridgeError.toError(), true));
  EXPECT_THAT(logLines(), ElementsAre("error|[VembaCheckoutKit] (Error) - Error decoding bridge "
                                      "script message: " +
                                      bridgeError.description()));
}

struct HttpCase {
  std::int64_t status;
  bool isRecovery;
  std::optional<CheckoutError> expected;
  const char* log;  // the one debug line written, or nullptr for none
};

CheckoutError unavailable(std::string message, std::int64_t status, bool recoverable) {
  return CheckoutError::checkoutUnavailable(std::move(message),
                                            CheckoutUnavailable::httpError(status), recoverable);
}

std::string debugLine(const std::string& text) {
  return "debug|[VembaCheckoutKit] (Debug) - " + text;
}

TEST_F(CheckoutErrorMappingTest, HttpStatusOfTheCheckoutDocument) {
  const CheckoutError expired = CheckoutError::checkoutExpired(
      "Checkout has expired.", CheckoutErrorCode::cartExpired, false);
  const std::vector<HttpCase> cases = {
      {399, false, std::nullopt, nullptr},
      {400, false, unavailable("Bad Request", 400, false), "400 error received"},
      {401, false, unavailable("Unauthorized", 401, false), "Unauthorized access (401)"},
      {404, true, unavailable("Not Found", 404, false), "Not found (404)"},
      {410, false, expired, "Gone (410)"},
      {500, false, unavailable("Internal Server Error", 500, true), "Server error (5xx)"},
      {503, false, unavailable("Service Unavailable", 503, true), "Server error (5xx)"},
      // A recovery view's server errors are final.
      {503, true, unavailable("Service Unavailable", 503, false), "Server error (5xx)"},
      {599, false, unavailable("Server Error", 599, true), "Server error (5xx)"},
      {418, false, unavailable("Client Error", 418, false), "418 error received"},
      {600, false, unavailable("Unknown Status", 600, false), "600 error received"},
  };
  for (const HttpCase& c : cases) {
    platform.log.lines.clear();
    EXPECT_EQ(checkoutErrorForHttpStatus(c.status, c.isRecovery), c.expected) << c.status;
    EXPECT_EQ(logLines(),
              c.log ? std::vector<std::string>{debugLine(c.log)} : std::vector<std::string>{})
        << c.status;
  }
}

TEST_F(CheckoutErrorMappingTest, NavigationFailures) {
  const Error cancelled{std::string(platform::kUrlErrorDomain), platform::UrlErrorCode::cancelled,
                        "cancelled"};
  EXPECT_EQ(checkoutErrorForNavigationFailure(cancelled, false), std::nullopt);
  EXPECT_THAT(logLines(),
              ElementsAre(debugLine("WebView navigation failed with error: description:cancelled "
                                    "domain:URLError code:-999"),
                          debugLine("Ignoring cancelled URL redirect. code:NSURLErrorCancelled")));

  // The same code in another domain is a real failure.
  const Error otherDomain{"WebKitErrorDomain", -999, "x"};
  EXPECT_EQ(checkoutErrorForNavigationFailure(otherDomain, false),
            CheckoutError::sdkError(otherDomain, true));
}

}  // namespace
}  // namespace vemba::checkout
