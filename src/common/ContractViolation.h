// The one way the library ends the process: when a caller or a peer breaks a promise the library
// relies on by design (a page's protocol message that cannot happen, a main-thread-only call made
// on another thread). The line, a fixed prefix then the reason, is written to the platform's log
// sink at fault severity whatever any log level says, then the process aborts.
//
// Tests and fuzzers may install a hook that is run first, with the reason alone; a hook that wants
// the process to continue must leave by throwing (e.g. ContractViolationForTesting). If it
// returns, the process still aborts, so a hook can never turn a violation into a silent success.
// Any thread.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vemba {

// Writes `prefix` + `reason` under `subsystem` and `category` (nothing when the platform has no
// log sink), after the hook, then aborts.
[[noreturn]] void contractViolation(std::string_view subsystem, std::string_view category,
                                    std::string_view prefix, std::string_view reason);

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

}  // namespace vemba
