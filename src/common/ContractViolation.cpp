#include "common/ContractViolation.h"

#include <atomic>
#include <cstdlib>
#include <string>

#include "platform/LogSink.h"
#include "platform/Services.h"

namespace vemba {
namespace {
std::atomic<ContractViolationHook> gHook{nullptr};
}  // namespace

void contractViolation(std::string_view subsystem, std::string_view category,
                       std::string_view prefix, std::string_view reason) {
  if (ContractViolationHook hook = gHook.load()) {
    hook(reason);
  }
  if (platform::LogSink* sink = platform::services().log) {
    std::string line(prefix);
    line.append(reason);
    sink->write(platform::LogSeverity::fault, subsystem, category, line);
  }
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

}  // namespace vemba
