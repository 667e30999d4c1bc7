#include "platform/OpenableSchemes.h"

#include <algorithm>
#include <cctype>

namespace vemba::platform {

bool isOpenableScheme(std::string_view scheme) {
  return std::any_of(
      kOpenableSchemes.begin(), kOpenableSchemes.end(), [scheme](std::string_view allowed) {
        return std::equal(
            allowed.begin(), allowed.end(), scheme.begin(), scheme.end(),
            [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
      });
}

}  // namespace vemba::platform
