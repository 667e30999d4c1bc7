#include "checkout/bridge/BridgeError.h"

#include <sstream>

namespace vemba::checkout {
namespace {
constexpr const char* kInvalidBridgeEventText = "The checkout page sent an invalid bridge event";
constexpr const char* kUnencodableInstrumentationText =
    "The instrumentation payload could not be encoded";
}  // namespace

std::string BridgeError::description() const {
  std::string text =
      kind_ == Kind::invalidBridgeEvent ? kInvalidBridgeEventText : kUnencodableInstrumentationText;
  if (underlying_) {
    text += ": ";
    text += underlying_->description;
  } else {
    text += ".";
  }
  return text;
}

std::string BridgeError::debugDescription() const {
  std::ostringstream out;
  out << (kind_ == Kind::invalidBridgeEvent ? "invalidBridgeEvent("
                                            : "unencodableInstrumentation(");
  if (underlying_) {
    out << *underlying_;
  } else {
    out << "nil";
  }
  out << ")";
  return out.str();
}

Error BridgeError::toError() const {
  return Error{kDomain, static_cast<int>(kind_), description()};
}

}  // namespace vemba::checkout
