#include "vemba/checkout/CheckoutError.h"

namespace vemba::checkout {
namespace {
constexpr const char* kDomain = "VembaCheckoutKit.CheckoutError";
}  // namespace

CheckoutError CheckoutError::sdkError(Error underlying, bool recoverable) {
  return CheckoutError(SdkError{std::move(underlying), recoverable});
}

CheckoutError CheckoutError::configurationError(std::string message, CheckoutErrorCode code,
                                                bool recoverable) {
  return CheckoutError(ConfigurationError{std::move(message), code, recoverable});
}

CheckoutError CheckoutError::checkoutUnavailable(std::string message, CheckoutUnavailable code,
                                                 bool recoverable) {
  return CheckoutError(Unavailable{std::move(message), code, recoverable});
}

CheckoutError CheckoutError::checkoutExpired(std::string message, CheckoutErrorCode code,
                                             bool recoverable) {
  return CheckoutError(Expired{std::move(message), code, recoverable});
}

bool CheckoutError::isRecoverable() const {
  return std::visit([](const auto& error) { return error.recoverable; }, value_);
}

Error CheckoutError::toError() const {
  // No custom description: the generic text of an error identified by its domain and case.
  const int code = static_cast<int>(value_.index());
  return Error{kDomain, code,
               std::string("The operation couldn't be completed. (") + kDomain + " error " +
                   std::to_string(code) + ".)"};
}

}  // namespace vemba::checkout
