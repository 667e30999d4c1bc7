#include "checkout/config/ContractViolation.h"

#include <atomic>
#include <cstdlib>
#include <string>

#include "checkout/config/OSLogger.h"

namespace vemba::checkout {
namespace {
std::atomic<ContractViolationHook> gHook{nullptr};
}  // namespace

void contractViolation(std::string_view reason) {
  if (ContractViolationHook hook = gHook.load()) {
    hook(reason);
  }
  std::string line(kContractViolationPrefix);
  line.append(reason);
  OSLogger::writeUnfiltered(platform::LogSeverity::fault, line);
  std::abort();
}

ScopedContractViolationHook::ScopedContractViolationHook(ContractViolationHook hook)
    : previous_(gHook.exchange(hook)) {}

ScopedContractViolationHook::~ScopedContractViolationHook() {
  gHook.store(previous_);
}

void throwContractViolationForTesting(std::string_view reason) {
  throw ContractViolationForTesting(reason);
}

}  // namespace vemba::checkout
