// Which schemes the library hands to another application: the four, in any case, and nothing
// that merely starts or ends like one of them.
#include "platform/OpenableSchemes.h"

#include <gtest/gtest.h>

namespace vemba::platform {
namespace {

TEST(OpenableSchemesTest, OnlyTheFourSchemesInAnyCase) {
  for (const char* scheme : {"http", "https", "mailto", "tel", "HTTPS", "MailTo", "TEL"}) {
    EXPECT_TRUE(isOpenableScheme(scheme)) << scheme;
  }
  for (const char* scheme : {"", "htt", "httpx", "xhttp", "https ", "javascript", "file", "data",
                             "ftp", "sms", "quillfeather-app"}) {
    EXPECT_FALSE(isOpenableScheme(scheme)) << scheme;
  }
}

}  // namespace
}  // namespace vemba::platform
