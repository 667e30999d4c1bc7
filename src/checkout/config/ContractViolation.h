// The one way the checkout core ends the process: when the checkout page breaks a promise of
// its protocol that the kit relies on by design (an "error" message with no error in it, a
// blocking-event message that is neither "true" nor "false"). The reason, after
// kContractViolationPrefix, is written to the platform's log sink at fault severity whatever the
// kit's log level (on Linux a critical record of GLib's log, which GLib's default writer prints
// on standard error), then the process aborts.
//
// Tests and fuzzers may install a hook that is run first; a hook that wants the process to
// continue must leave by throwing (e.g. ContractViolationForTesting). If it returns, the process
// still aborts, so a hook can never turn a violation into a silent success.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vemba::checkout {

inline constexpr std::string_view kContractViolationPrefix = "vemba-checkout: contract violation: ";

[[noreturn]] void contractViolation(std::string_view reason);

// What a test or fuzzing hook may throw to leave contractViolation().
class ContractViolationForTesting : public std::runtime_error {
 public:
  explicit ContractViolationForTesting(std::string_view reason)
      : std::runtime_error(std::string(reason)) {}
};

using ContractViolationHook = void (*)(std::string_view reason);

// Tests and fuzzers only: installs `hook` for the lifetime of this object (not nestable across
// threads; the previous hook is restored on destruction).
class ScopedContractViolationHook {
 public:
  explicit ScopedContractViolationHook(ContractViolationHook hook);
  ~ScopedContractViolationHook();
  ScopedContractViolationHook(const ScopedContractViolationHook&) = delete;
  ScopedContractViolationHook& operator=(const ScopedContractViolationHook&) = delete;

 private:
  ContractViolationHook previous_;
};

// A hook that throws ContractViolationForTesting with the reason.
[[noreturn]] void throwContractViolationForTesting(std::string_view reason);

}  // namespace vemba::checkout
