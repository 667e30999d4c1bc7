#include "checkout/events/FreeFormJson.h"

#include <gtest/gtest.h>

#include <string>

namespace vemba::checkout {
namespace {

using json::Json;

Expected<Json, json::DecodingError> readObjectText(std::string_view text) {
  return json::decodeText(text, readFreeFormObject);
}

// The reading written back as JSON text (integers without a point, doubles with one).
std::string readBack(std::string_view text) {
  auto read = readObjectText(text);
  EXPECT_TRUE(read) << text << ": " << (read ? "" : read.error().description());
  return read ? read->dump() : "";
}

// `inner` inside `depth` copies of `open`, each closed by `close`.
std::string nested(std::string_view open, char close, std::size_t depth, std::string_view inner) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) {
    text += open;
  }
  return text + std::string(inner) + std::string(depth, close);
}

// The reading the pixel decoder uses. Its JsonValue image (readJsonObject) is compared with it by
// the bridge fuzzer.
TEST(FreeFormJsonTest, MembersKeepTheirKindArrayElementsReadNumbersAsDoublesNullsAreLeftOut) {
  // A member number without a fractional part is an integer even when written with one; one too
  // large for a signed 64-bit integer is read as a double instead of failing.
  EXPECT_EQ(
      readBack(R"({"int":3,"neg":-7,"whole":2.0,"frac":2.5,"big":18446744073709551615,)"
               R"("t":true,"f":false,"s":"x","obj":{"n":1,"d":0.5},"arr":[1,"x"],"null":null})"),
      R"({"arr":[1.0,"x"],"big":1.8446744073709552e+19,"f":false,"frac":2.5,"int":3,"neg":-7,)"
      R"("obj":{"d":0.5,"n":1},"s":"x","t":true,"whole":2})");
  EXPECT_EQ(readBack(R"({"a":[1,-2,2.5,true,false,"s",null,{"k":4,"z":null},[5,[null,6]]]})"),
            R"({"a":[1.0,-2.0,2.5,true,false,"s",{"k":4},[5.0,[6.0]]]})");
}

TEST(FreeFormJsonTest, NonObjectsFailAsTypeMismatchAndNestingIsBoundedAtTheLimit) {
  for (const char* text : {"[]", "1", "\"x\"", "null", "true"}) {
    auto read = readObjectText(text);
    ASSERT_FALSE(read) << text;
    EXPECT_NE(read.error().kind, json::DecodingError::Kind::dataCorrupted) << text;
  }
  // Depth counts the outermost object; objects and arrays both count.
  EXPECT_TRUE(readObjectText("{\"k\":" + nested("[", ']', kMaxFreeFormDepth - 1, "1") + "}"));
  auto over = readObjectText("{\"k\":" + nested("[", ']', kMaxFreeFormDepth, "1") + "}");
  ASSERT_FALSE(over);
  EXPECT_EQ(over.error().kind, json::DecodingError::Kind::dataCorrupted);
}

}  // namespace
}  // namespace vemba::checkout
