// VembaError: the ad half's own error cases. The position of a case is its integer code, so the
// reserved cases keep their places even though the library never raises them.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "vemba/Error.h"
#include "vemba/Export.h"

namespace vemba {

class VEMBA_EXPORT VembaError {
 public:
  struct InternalError {
    std::string message;
    friend bool operator==(const InternalError&, const InternalError&) = default;
  };
  struct InvalidRequest {
    friend bool operator==(InvalidRequest, InvalidRequest) = default;
  };
  struct NoFill {
    friend bool operator==(NoFill, NoFill) = default;
  };
  struct Timeout {
    friend bool operator==(Timeout, Timeout) = default;
  };
  struct EncodingFailed {
    friend bool operator==(EncodingFailed, EncodingFailed) = default;
  };
  struct NoData {
    friend bool operator==(NoData, NoData) = default;
  };
  struct NoBid {
    friend bool operator==(NoBid, NoBid) = default;
  };
  using Case =
      std::variant<InternalError, InvalidRequest, NoFill, Timeout, EncodingFailed, NoData, NoBid>;

  static constexpr const char* kDomain = "VembaError";

  VembaError(Case value) : value_(std::move(value)) {}  // NOLINT: implicit from a case

  static VembaError internalError(std::string message) {
    return VembaError(InternalError{std::move(message)});
  }
  static VembaError invalidRequest() { return VembaError(InvalidRequest{}); }
  static VembaError noFill() { return VembaError(NoFill{}); }
  static VembaError timeout() { return VembaError(Timeout{}); }
  static VembaError encodingFailed() { return VembaError(EncodingFailed{}); }
  static VembaError noData() { return VembaError(NoData{}); }
  static VembaError noBid() { return VembaError(NoBid{}); }

  const Case& value() const { return value_; }
  // The case's position: 0 internalError ... 6 noBid.
  int code() const { return static_cast<int>(value_.index()); }
  // The error as handed to hosts: domain "VembaError", the code, and the platform's default
  // text for an error of this type and code.
  Error toError() const;
  // The VembaError that `error` carries, if it is one (internalError's message is not carried).
  static std::optional<VembaError> from(const Error& error);

  friend bool operator==(const VembaError&, const VembaError&) = default;

 private:
  Case value_;
};

}  // namespace vemba
