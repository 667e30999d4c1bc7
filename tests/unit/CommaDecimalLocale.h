// Switches the process to a locale whose decimal separator is a comma (German), as a GTK host does
// with setlocale(LC_ALL, "") under such a language, for the scope of one object, and restores the
// "C" locale after. scripts/install-deps.sh installs the locale; when the system lacks it all the
// same, it is compiled once per process with localedef (the `locales` package's sources) into a
// temporary folder, which is removed again once the locale is loaded (glibc then keeps the
// folder's name for good: a leak of the C library's own, suppressed below). Main thread only; the
// test fails when no such locale can be made.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <string>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VEMBA_LSAN_SUPPRESSIONS 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(VEMBA_LSAN_SUPPRESSIONS)
extern "C" __attribute__((used, visibility("default"))) inline const char*
__lsan_default_suppressions() {
  return "leak:__argz_add_sep\n";
}
#endif

namespace vemba::tests {

class CommaDecimalLocale {
 public:
  static constexpr const char* kName = "de_DE.UTF-8";

  CommaDecimalLocale() {
    static const bool available = [] {
      if (std::setlocale(LC_ALL, kName) != nullptr) {
        return true;
      }
      std::string folder = (std::filesystem::temp_directory_path() / "vemba-locale-XXXXXX");
      if (mkdtemp(folder.data()) == nullptr) {
        return false;
      }
      const std::string command =
          "localedef -i de_DE -f UTF-8 " + folder + "/" + kName + " >/dev/null 2>&1";
      const bool made = std::system(command.c_str()) == 0 &&
                        setenv("LOCPATH", folder.c_str(), 1) == 0 &&
                        std::setlocale(LC_ALL, kName) != nullptr;
      std::filesystem::remove_all(folder);  // loaded data stays mapped
      return made;
    }();
    if (!available || std::setlocale(LC_ALL, kName) == nullptr) {
      ADD_FAILURE() << "no " << kName << " locale (is the locales package installed?)";
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
