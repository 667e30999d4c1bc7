// The main of the integration tests: plain gtest, with every proxy setting removed first so that
// libcurl only ever talks to the loopback servers the tests start.
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
  for (const char* name :
       {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"}) {
    unsetenv(name);
  }
  setenv("no_proxy", "*", 1);
  setenv("NO_PROXY", "*", 1);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
