#include "vemba/ads/VembaError.h"

namespace vemba {

Error VembaError::toError() const {
  // The platform's default text for an error of this type and code.
  return Error{kDomain, code(),
               "The operation couldn\u2019t be completed. (VembaError error " +
                   std::to_string(code()) + ".)"};
}

std::optional<VembaError> VembaError::from(const Error& error) {
  if (error.domain != kDomain) {
    return std::nullopt;
  }
  switch (error.code) {
    case 0:
      return internalError({});
    case 1:
      return invalidRequest();
    case 2:
      return noFill();
    case 3:
      return timeout();
    case 4:
      return encodingFailed();
    case 5:
      return noData();
    case 6:
      return noBid();
    default:
      return std::nullopt;
  }
}

}  // namespace vemba
