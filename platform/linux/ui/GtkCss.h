// CSS text for the values the core sets on views: numbers and colours written without the
// process locale (GTK switches to the user's locale, where "0.5" could become "0,5").
#pragma once

#include <string>

#include "vemba/platform/Color.h"

namespace vemba::linux_platform {

// A decimal number ("12", "0.25").
std::string cssNumber(double value);
// "rgba(r, g, b, a)" for an RGBA colour (components scaled to 0–255); the theme's view background
// ("@theme_base_color", which follows the light or dark variant) for the system background.
std::string cssColor(const platform::Color& color);

}  // namespace vemba::linux_platform
