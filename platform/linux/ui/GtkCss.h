// CSS text for the values the core sets on views: numbers and colours written without the
// process locale (GTK switches to the user's locale, where "0.5" could become "0,5").
#pragma once

#include <cstddef>
#include <string>

#include "vemba/platform/Color.h"

namespace vemba::linux_platform {

// A decimal number ("12", "0.25").
std::string cssNumber(double value);
// "rgba(r, g, b, a)" for an RGBA colour (components scaled to 0–255); the theme's view background
// ("@theme_base_color", which follows the light or dark variant) for the system background.
std::string cssColor(const platform::Color& color);

}  // namespace vemba::linux_platform

using GtkWidget = struct _GtkWidget;

namespace vemba::linux_platform {

// Styles `widget` alone with `declarations` through a provider and a CSS class of its own (for
// widgets that are not views: bar items, sheet panels). Replaces what an earlier call set.
void styleWidget(GtkWidget* widget, const std::string& declarations);

// Class names that select one widget alone ("vemba-c1", "vemba-c2", ...). GLib interns every
// class name for the life of the process, so a name is handed back once its widget no longer
// carries it and is handed out again: the names ever made never exceed the widgets styled at one
// time. Main thread only.
std::string acquireCssClass();
void releaseCssClass(std::string name);

}  // namespace vemba::linux_platform
