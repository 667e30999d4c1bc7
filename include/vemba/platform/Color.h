// A colour as the core hands it to the platform: plain RGBA components in [0, 1], or one of the
// platform's semantic colours that the backend resolves when drawing (they follow light and
// dark appearance). Value type; thread-safe to copy.
#pragma once

#include "vemba/Export.h"

namespace vemba::platform {

struct VEMBA_EXPORT Color {
  enum class Kind {
    rgba,              // the components below
    systemBackground,  // the platform's system background colour; components unused
  };

  Kind kind = Kind::rgba;
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 1.0;

  static constexpr Color rgba(double r, double g, double b, double a) {
    return Color{Kind::rgba, r, g, b, a};
  }
  static constexpr Color systemBackground() { return Color{Kind::systemBackground, 0, 0, 0, 0}; }

  friend constexpr bool operator==(const Color&, const Color&) = default;
};

}  // namespace vemba::platform
