// The error the checkout sheet hands to the host's delegate: four cases, each with a flag saying
// whether the sheet may try to recover from it. Value type; thread-safe to copy.
#pragma once

#include <string>
#include <utility>
#include <variant>

#include "vemba/Error.h"
#include "vemba/Export.h"
#include "vemba/checkout/CheckoutErrorCode.h"

namespace vemba::checkout {

class VEMBA_EXPORT CheckoutError {
 public:
  // A failure inside the kit or the platform (decoding, navigation). The death of the shown page's
  // web content process is one: `underlying` is {"WKErrorDomain", 2, "The web content process
  // crashed." (or "... exceeded its memory limit.", "... was terminated.")}, recoverable unless
  // the page was the recovery page, so the sheet recovers as from any recoverable failure.
  struct SdkError {
    Error underlying;
    bool recoverable = false;
    friend bool operator==(const SdkError&, const SdkError&) = default;
  };
  // Reserved for the host's exhaustive handling: the kit itself never produces this case.
  struct ConfigurationError {
    std::string message;
    CheckoutErrorCode code = CheckoutErrorCode::unknown;
    bool recoverable = false;
    friend bool operator==(const ConfigurationError&, const ConfigurationError&) = default;
  };
  struct Unavailable {
    std::string message;
    CheckoutUnavailable code = CheckoutUnavailable::clientError(CheckoutErrorCode::unknown);
    bool recoverable = false;
    friend bool operator==(const Unavailable&, const Unavailable&) = default;
  };
  struct Expired {
    std::string message;
    CheckoutErrorCode code = CheckoutErrorCode::unknown;
    bool recoverable = false;
    friend bool operator==(const Expired&, const Expired&) = default;
  };
  // In case order: sdkError, configurationError, checkoutUnavailable, checkoutExpired.
  using Value = std::variant<SdkError, ConfigurationError, Unavailable, Expired>;

  static CheckoutError sdkError(Error underlying, bool recoverable);
  static CheckoutError configurationError(std::string message, CheckoutErrorCode code,
                                          bool recoverable);
  static CheckoutError checkoutUnavailable(std::string message, CheckoutUnavailable code,
                                           bool recoverable);
  static CheckoutError checkoutExpired(std::string message, CheckoutErrorCode code,
                                       bool recoverable);

  const Value& value() const { return value_; }
  // The `recoverable` flag of whichever case this is.
  bool isRecoverable() const;
  // This error as a generic error (domain "VembaCheckoutKit.CheckoutError", code = case index).
  Error toError() const;

  friend bool operator==(const CheckoutError&, const CheckoutError&) = default;

 private:
  explicit CheckoutError(Value value) : value_(std::move(value)) {}
  Value value_;
};

}  // namespace vemba::checkout
