// The URL schemes the library hands to another application: web pages, mail and telephone. A
// backend's Application answers canOpenURL() with this rule and its open() refuses any other
// scheme, whatever the page or the host asked. Pure functions; any thread.
#pragma once

#include <array>
#include <string_view>

namespace vemba::platform {

inline constexpr std::array<std::string_view, 4> kOpenableSchemes = {"http", "https", "mailto",
                                                                     "tel"};

// True when `scheme` is one of kOpenableSchemes, compared without regard to ASCII case.
bool isOpenableScheme(std::string_view scheme);

}  // namespace vemba::platform
