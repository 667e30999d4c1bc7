// The bridge's own error. It never reaches the host: a message that cannot be decoded is
// reported by the web view as a recoverable sdkError carrying this error, and an instrumentation
// payload that cannot be encoded is only logged. Value type.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "vemba/Error.h"

namespace vemba::checkout {

class BridgeError {
 public:
  enum class Kind { invalidBridgeEvent, unencodableInstrumentation };

  static constexpr const char* kDomain = "VembaCheckoutKit.BridgeError";

  static BridgeError invalidBridgeEvent(std::optional<Error> underlying) {
    return BridgeError(Kind::invalidBridgeEvent, std::move(underlying));
  }
  static BridgeError unencodableInstrumentation(std::optional<Error> underlying) {
    return BridgeError(Kind::unencodableInstrumentation, std::move(underlying));
  }

  Kind kind() const { return kind_; }
  // The error that caused this one, if any.
  const std::optional<Error>& underlying() const { return underlying_; }

  // Readable text: what failed and, when known, why (the underlying error's description).
  std::string description() const;
  // The case and its payload, e.g. "unencodableInstrumentation(nil)".
  std::string debugDescription() const;
  // This error as a generic error (domain kDomain, code = case index, description()).
  Error toError() const;

  friend bool operator==(const BridgeError&, const BridgeError&) = default;

 private:
  BridgeError(Kind kind, std::optional<Error> underlying)
      : kind_(kind), underlying_(std::move(underlying)) {}
  Kind kind_;
  std::optional<Error> underlying_;
};

}  // namespace vemba::checkout
