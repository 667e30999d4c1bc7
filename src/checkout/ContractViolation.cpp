#include "checkout/ContractViolation.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace vemba::checkout {
namespace {
std::atomic<ContractViolationHook> gHook{nullptr};
}  // namespace

void contractViolation(std::string_view reason) {
  if (ContractViolationHook hook = gHook.load()) {
    hook(reason);
  }
  std::fprintf(stderr, "%.*s%.*s\n", static_cast<int>(kContractViolationPrefix.size()),
               kContractViolationPrefix.data(), static_cast<int>(reason.size()), reason.data());
  std::fflush(stderr);
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
