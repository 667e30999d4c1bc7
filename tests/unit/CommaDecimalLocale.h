// Switches the process to a locale whose decimal separator is a comma (German), as a GTK host does
// with setlocale(LC_ALL, "") under such a language, for the scope of one object, and restores the
// "C" locale after. scripts/install-deps.sh provides the locale; the test fails without it. Main
// thread only.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <locale>

namespace vemba::tests {

class CommaDecimalLocale {
 public:
  static constexpr const char* kName = "de_DE.UTF-8";

  CommaDecimalLocale() {
    if (std::setlocale(LC_ALL, kName) == nullptr) {
      ADD_FAILURE() << "no " << kName << " locale: run scripts/install-deps.sh";
      return;
    }
    std::locale::global(std::locale(kName));
  }
  ~CommaDecimalLocale() {
    std::setlocale(LC_ALL, "C");
    std::locale::global(std::locale::classic());
  }
  CommaDecimalLocale(const CommaDecimalLocale&) = delete;
  CommaDecimalLocale& operator=(const CommaDecimalLocale&) = delete;
};

}  // namespace vemba::tests
