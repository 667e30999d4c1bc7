#include "platform/OpenableSchemes.h"

#include <algorithm>

#include "common/AsciiCase.h"

namespace vemba::platform {

bool isOpenableScheme(std::string_view scheme) {
  return std::any_of(
      kOpenableSchemes.begin(), kOpenableSchemes.end(),
      [scheme](std::string_view allowed) { return equalsIgnoringAsciiCase(allowed, scheme); });
}

}  // namespace vemba::platform
