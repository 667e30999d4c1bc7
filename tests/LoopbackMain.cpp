// The main of the tests on the real backend: plain gtest with every proxy setting removed (libcurl
// and WebKit only ever talk to the loopback servers the tests start), accessibility off (no
// session bus under Xvfb), and the user's data and cache folders moved to a fresh temporary
// folder, so that nothing a web view stores reaches the real home.
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
  setenv("GTK_A11Y", "none", 1);
  std::string home = (std::filesystem::temp_directory_path() / "vemba-web-test-XXXXXX").string();
  if (mkdtemp(home.data()) != nullptr) {
    setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (home + "/cache").c_str(), 1);
  }
  ::testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  std::error_code ignored;
  std::filesystem::remove_all(home, ignored);
  return result;
}
