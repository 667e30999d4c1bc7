// The checkout core's contract violations: the checkout page broke a promise of its protocol that
// the kit relies on by design (an "error" message with no error in it, a blocking-event message
// that is neither "true" nor "false"). The reason, after kContractViolationPrefix, is written
// under the kit's log subsystem (on Linux a critical record of GLib's log, which GLib's default
// writer prints on standard error), then the process aborts; hooks as for any violation (see
// common/ContractViolation.h).
#pragma once

#include <string_view>

#include "common/ContractViolation.h"

namespace vemba::checkout {

inline constexpr std::string_view kContractViolationPrefix = "vemba-checkout: contract violation: ";

[[noreturn]] void contractViolation(std::string_view reason);

}  // namespace vemba::checkout
