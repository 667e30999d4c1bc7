// Points, sizes and rectangles in the platform's layout units (points on a phone, logical pixels
// on a desktop). Plain values.
#pragma once

namespace vemba::platform {

struct Point {
  double x = 0.0;
  double y = 0.0;
  friend constexpr bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0.0;
  double height = 0.0;
  friend constexpr bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  Point origin;
  Size size;

  constexpr double minX() const { return origin.x; }
  constexpr double minY() const { return origin.y; }
  constexpr double midX() const { return origin.x + size.width / 2.0; }
  constexpr double width() const { return size.width; }
  constexpr double height() const { return size.height; }

  friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace vemba::platform
