// Comparing protocol tokens (URL schemes, header names, flag values) without regard to ASCII
// case, independent of the locale. Pure; any thread.
#pragma once

#include <algorithm>
#include <string_view>

namespace vemba {

constexpr char asciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return asciiLower(x) == asciiLower(y); });
}

}  // namespace vemba
