#include "vemba/Url.h"

#include <gtest/gtest.h>

#include "platform/OpenableSchemes.h"

namespace vemba {
namespace {

TEST(UrlTest, AcceptsAndRejectsByTheUriGrammar) {
  struct Case {
    const char* text;
    bool parses;
  };
  const Case cases[] = {
      {"https://127.0.0.1:18443/bid", true},
      {"https://ads.example/page.html?x=1#top", true},
      {"relative/path", true},  // a URI reference need not be absolute
      {"", false},
      {"ht tp://bad url", false},
      {"https://exa mple.com/", false},
      {"https://[::1", false},
      {"%zz", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Url::parse(c.text).has_value(), c.parses) << c.text;
  }
}

TEST(UrlTest, ExposesComponentsKeepsTheTextAndResolvesReferences) {
  const auto url = Url::parse("https://127.0.0.1:18443/v1/billing?bidid=a%20b&win=1&flag#frag");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->absoluteString(),
            "https://127.0.0.1:18443/v1/billing?bidid=a%20b&win=1&flag#frag");
  EXPECT_EQ(url->scheme(), "https");
  EXPECT_EQ(url->host(), "127.0.0.1");
  EXPECT_EQ(url->port(), "18443");
  EXPECT_EQ(url->path(), "/v1/billing");
  EXPECT_EQ(url->pathComponents(), (std::vector<std::string>{"v1", "billing"}));
  const std::vector<Url::QueryItem> expected{
      {"bidid", "a b"}, {"win", "1"}, {"flag", std::nullopt}};
  EXPECT_EQ(url->queryItems(), expected);
  EXPECT_EQ(url->fragment(), "frag");
  // A reference resolves against it.
  EXPECT_EQ(url->resolve("../d.html")->absoluteString(), "https://127.0.0.1:18443/d.html");
  EXPECT_EQ(url->resolve("/x?y=1")->absoluteString(), "https://127.0.0.1:18443/x?y=1");
  EXPECT_FALSE(url->resolve("bad url"));
}

// Which schemes the library hands to another application: the four, in any case, and nothing
// that merely starts or ends like one of them.
TEST(OpenableSchemesTest, OnlyTheFourSchemesInAnyCase) {
  for (const char* scheme : {"http", "https", "mailto", "tel", "HTTPS", "MailTo", "TEL"}) {
    EXPECT_TRUE(platform::isOpenableScheme(scheme)) << scheme;
  }
  for (const char* scheme : {"", "htt", "httpx", "xhttp", "https ", "javascript", "file", "data",
                             "ftp", "sms", "quillfeather-app"}) {
    EXPECT_FALSE(platform::isOpenableScheme(scheme)) << scheme;
  }
}

}  // namespace
}  // namespace vemba
