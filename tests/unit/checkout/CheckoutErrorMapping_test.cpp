#include "checkout/webview/CheckoutErrorMapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CheckoutTestSupport.h"
#include "checkout/config/OSLogger.h"
#include "vemba/checkout/EventJson.h"

namespace vemba::checkout {
namespace {

using ::testing::StartsWith;

class CheckoutErrorMappingTest : public tests::CheckoutTest {
 protected:
  CheckoutErrorMappingTest() { OSLogger::shared().setLogLevel(LogLevel::all); }
};

// The page's "error" message as the bridge decodes it and the web view maps it: the first
// element's group picks the error, a missing reason gives its default message, and the code is
// read exactly (anything else is unknown).
TEST_F(CheckoutErrorMappingTest, PageErrorMessagesByGroup) {
  using Code = CheckoutErrorCode;
  const auto unavailable = [](std::string message, Code code, bool recoverable) {
    return CheckoutError::checkoutUnavailable(std::move(message),
                                              CheckoutUnavailable::clientError(code), recoverable);
  };
  const std::string info = "info|[VembaCheckoutKit] (Info) - ";
  const std::string error = "error|[VembaCheckoutKit] (Error) - ";
  struct Case {
    const char* body;
    std::optional<CheckoutError> expected;
    std::vector<std::string> log;
  };
  const Case cases[] = {
      {R"([{"group":"expired","code":"cart_expired","reason":"Gone"}])",
       CheckoutError::checkoutExpired("Gone", Code::cartExpired, false),
       {info + "Checkout expired error received: Gone, code: cartExpired"}},
      {R"([{"group":"expired"},{"group":"unrecoverable"}])",
       CheckoutError::checkoutExpired("Checkout has expired.", Code::unknown, false),
       {info + "Checkout expired error received: No message, code: unknown"}},
      {R"([{"group":"unrecoverable","code":"CART_EXPIRED","reason":null,"extra":[1]}])",
       unavailable("Checkout unavailable.", Code::unknown, true),
       {error + "Checkout unavailable error received: No message, code: unknown"}},
      {R"([{"group":"unrecoverable","code":"invalid_cart","reason":"Down"}])",
       unavailable("Down", Code::invalidCart, true),
       {error + "Checkout unavailable error received: Down, code: invalidCart"}},
      // A configuration error reaches the host as an unrecoverable "unavailable".
      {R"([{"group":"configuration","code":"storefront_password_required","flowType":"x"}])",
       unavailable("Storefront configuration error.", Code::storefrontPasswordRequired, false),
       {error + "Configuration error received: No message, code: storefrontPasswordRequired"}},
      {R"([{"group":"authentication","reason":"x"}])", std::nullopt, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    platform.log.lines.clear();
    const auto event = CheckoutBridge::decode(tests::envelope("error", c.body));
    ASSERT_TRUE(event.hasValue());
    EXPECT_EQ(checkoutErrorForWebEvent(event.value()), c.expected);
    EXPECT_EQ(logLines(), c.log);
  }
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

// The host-facing JSON of the cases the mappings above do not make, and of a nested code; what a
// reading that fails says.
TEST(CheckoutErrorJsonTest, CasesWrittenAndReadBack) {
  const std::pair<CheckoutError, std::string> cases[] = {
      {CheckoutError::sdkError(Error{"URLError", -1009, "offline/now"}, true),
       R"({"case":"sdkError","recoverable":true,"underlying":{"code":-1009,)"
       R"("description":"offline\/now","domain":"URLError"}})"},
      {CheckoutError::configurationError("m", CheckoutErrorCode::invalidCart, false),
       R"({"case":"configurationError","code":"invalid_cart","message":"m","recoverable":false})"},
      {unavailable("Not Found", 404, false),
       R"({"case":"checkoutUnavailable","code":{"httpError":404},"message":"Not Found",)"
       R"("recoverable":false})"},
  };
  for (const auto& [error, text] : cases) {
    EXPECT_EQ(toJson(error), text);
    EXPECT_EQ(fromJson<CheckoutError>(text).value(), error) << text;
  }
  // Text that is not UTF-8 is written, with U+FFFD in place of each invalid byte, not thrown.
  EXPECT_EQ(toJson(CheckoutError::checkoutExpired("a\xff", CheckoutErrorCode::unknown, false)),
            std::string(R"({"case":"checkoutExpired","code":"unknown","message":"a)") + "\uFFFD" +
                R"(","recoverable":false})");
  const std::pair<const char*, const char*> failures[] = {
      {R"({"case":"sdkerror"})", R"(Data corrupted at "case": Cannot initialize CheckoutError )"},
      {R"({"case":"checkoutExpired","message":"m","code":"CART_EXPIRED"})",
       R"(Data corrupted at "code": Cannot initialize CheckoutErrorCode from invalid String )"},
      {R"({"case":"sdkError","underlying":{"domain":"d","code":2147483648}})",
       R"(Data corrupted at "underlying.code": Parsed JSON number <2147483648> does not fit )"},
  };
  for (const auto& [text, description] : failures) {
    EXPECT_THAT(fromJson<CheckoutError>(text).error().description, StartsWith(description));
  }
}

}  // namespace
}  // namespace vemba::checkout
