// The main of the tests on the Linux backend that reach servers: plain gtest, with every proxy
// setting removed first (libcurl and WebKit only ever talk to the loopback servers the tests
// start), accessibility off unless asked for (no session bus under Xvfb), and the user's data and
// cache folders moved to a fresh temporary folder, removed at the end, so that nothing a web view
// stores reaches the real home.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
  for (const char* name :
       {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"}) {
    unsetenv(name);
  }
  setenv("no_proxy", "*", 1);
  setenv("NO_PROXY", "*", 1);
  setenv("GTK_A11Y", "none", 0);
  std::string home = (std::filesystem::temp_directory_path() / "vemba-test-home-XXXXXX").string();
  const bool haveHome = mkdtemp(home.data()) != nullptr;
  if (haveHome) {
    setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
  }
  ::testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  if (haveHome) {
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
  }
  return result;
}
