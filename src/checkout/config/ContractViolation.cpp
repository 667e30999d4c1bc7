#include "checkout/config/ContractViolation.h"

#include "checkout/config/OSLogger.h"

namespace vemba::checkout {

void contractViolation(std::string_view reason) {
  ::vemba::contractViolation(OSLogger::kSubsystem, OSLogger::kCategory, kContractViolationPrefix,
                             reason);
}

}  // namespace vemba::checkout
