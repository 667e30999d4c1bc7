// Request header lines for libcurl and the response fields collected from its callback.
#include "CurlHeaders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vemba::linux_platform {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

// Plain fields, an empty value (sent as "Name;": "Name:" would drop it), a value with CR LF and a
// name with a space are seen on the wire by the HTTP client's integration test.
TEST(CurlHeadersTest, RequestLinesKeepValuesAndSendBlankValuesAsEmptyFields) {
  EXPECT_EQ(curlRequestHeaderLine("X-API-Key", "  "), "X-API-Key;");
  EXPECT_EQ(curlRequestHeaderLine("X-Text", "a: b; c"), "X-Text: a: b; c");
}

TEST(CurlHeadersTest, RequestLinesThatWouldBreakTheFramingAreRefused) {
  for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{
           {"", "v"},
           {"X-A", "v\nw"},
           {"X-A\r\nX-B", "v"},
           {"X:A", "v"},
           {"X;A", "v"},
           {"X-A", std::string("v\0w", 3)},
       }) {
    EXPECT_EQ(curlRequestHeaderLine(name, value), std::nullopt) << name << " / " << value;
  }
}

TEST(CurlHeadersTest, OnlyTheLastResponseHeadRemains) {
  ResponseHeaderCollector collector;
  for (const char* line :
       {"HTTP/1.1 100 Continue\r\n", "\r\n", "HTTP/1.1 302 Found\r\n", "Location: /next\r\n",
        "Set-Cookie: a=1\r\n", "\r\n", "HTTP/2 200\r\n", "content-type: application/json\r\n",
        "X-Dup: 1\r\n", "X-Dup: 2\r\n", "\r\n"}) {
    collector.addLine(line);
  }
  EXPECT_THAT(collector.headers(), ElementsAre(Pair("content-type", "application/json"),
                                               Pair("X-Dup", "1"), Pair("X-Dup", "2")));
}

TEST(CurlHeadersTest, FieldsAreTrimmedAndFoldedLinesJoined) {
  ResponseHeaderCollector collector;
  for (const char* line :
       {"HTTP/1.1 200 OK\r\n", "X-Spaced:   value  \r\n", "X-Empty:\r\n", "X-Folded: first\r\n",
        "   second\r\n", "\tthird\r\n", "not a field\r\n", ": no name\r\n", "X-Last: end\n"}) {
    collector.addLine(line);
  }
  EXPECT_THAT(collector.headers(),
              ElementsAre(Pair("X-Spaced", "value"), Pair("X-Empty", ""),
                          Pair("X-Folded", "first second third"), Pair("X-Last", "end")));
}

}  // namespace
}  // namespace vemba::linux_platform
