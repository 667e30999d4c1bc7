#include "GtkCss.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace vemba::linux_platform {

std::string cssNumber(double value) {
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, 3);
  std::string text(buffer.data(), result.ptr);
  // "12.500" → "12.5", "12.000" → "12".
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  return text == "-0" ? "0" : text;
}

std::string cssColor(const platform::Color& color) {
  if (color.kind == platform::Color::Kind::systemBackground) {
    return "@theme_base_color";
  }
  auto channel = [](double component) {
    return cssNumber(std::clamp(component, 0.0, 1.0) * 255.0);
  };
  return "rgba(" + channel(color.red) + ", " + channel(color.green) + ", " + channel(color.blue) +
         ", " + cssNumber(std::clamp(color.alpha, 0.0, 1.0)) + ")";
}

}  // namespace vemba::linux_platform
