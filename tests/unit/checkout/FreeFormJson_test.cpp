#include "checkout/events/FreeFormJson.h"

#include <gtest/gtest.h>

#include <string>

namespace vemba::checkout {
namespace {

using json::Json;

Expected<JsonObject, json::DecodingError> readObjectText(std::string_view text) {
  return json::decodeText(text, readJsonObject);
}

JsonObject readObjectOk(std::string_view text) {
  auto read = readObjectText(text);
  EXPECT_TRUE(read) << text << ": " << (read ? "" : read.error().description());
  return read ? read.value() : JsonObject{};
}

// `inner` inside `depth` copies of `open`, each closed by `close`.
std::string nested(std::string_view open, char close, std::size_t depth, std::string_view inner) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) {
    text += open;
  }
  return text + std::string(inner) + std::string(depth, close);
}

TEST(FreeFormJsonTest, ObjectMembersKeepTheirKindIntegersStayIntegers) {
  const JsonObject map = readObjectOk(
      R"({"int":3,"neg":-7,"whole":2.0,"frac":2.5,"big":18446744073709551615,)"
      R"("t":true,"f":false,"s":"x","obj":{"n":1,"d":0.5},"arr":[1,"x"],"null":null})");
  EXPECT_EQ(map.at("int"), JsonValue(std::int64_t{3}));
  EXPECT_EQ(map.at("neg"), JsonValue(std::int64_t{-7}));
  // A number without a fractional part is an integer even when written with one.
  EXPECT_EQ(map.at("whole"), JsonValue(std::int64_t{2}));
  EXPECT_EQ(map.at("frac"), JsonValue(2.5));
  // Too large for a signed 64-bit integer: read as a double instead of failing.
  EXPECT_EQ(map.at("big"), JsonValue(18446744073709551615.0));
  EXPECT_EQ(map.at("t"), JsonValue(true));
  EXPECT_EQ(map.at("f"), JsonValue(false));
  EXPECT_EQ(map.at("s"), JsonValue("x"));
  EXPECT_EQ(map.at("obj"), JsonValue(JsonObject{{"n", std::int64_t{1}}, {"d", 0.5}}));
  EXPECT_EQ(map.at("arr"), JsonValue(JsonArray{1.0, "x"}));
  EXPECT_EQ(map.count("null"), 0U);
  EXPECT_EQ(map.size(), 10U);
}

TEST(FreeFormJsonTest, ArrayElementsReadEveryNumberAsDoubleAndSkipNulls) {
  const JsonObject map =
      readObjectOk(R"({"a":[1,-2,2.5,true,false,"s",null,{"k":4,"z":null},[5,[null,6]]]})");
  const JsonArray expected{1.0,
                           -2.0,
                           2.5,
                           true,
                           false,
                           "s",
                           JsonObject{{"k", std::int64_t{4}}},
                           JsonArray{5.0, JsonArray{6.0}}};
  EXPECT_EQ(map.at("a"), JsonValue(expected));
}

TEST(FreeFormJsonTest, NonContainersFailAsTypeMismatch) {
  for (const char* text : {"[]", "1", "\"x\"", "null", "true"}) {
    auto read = readObjectText(text);
    ASSERT_FALSE(read) << text;
    EXPECT_NE(read.error().kind, json::DecodingError::Kind::dataCorrupted) << text;
  }
  EXPECT_FALSE(json::decodeText("{}", readJsonArray));
}

TEST(FreeFormJsonTest, NestingIsBoundedAtTheLimit) {
  // Depth counts the outermost object; objects and arrays both count.
  const std::string atLimit = "{\"k\":" + nested("[", ']', kMaxFreeFormDepth - 1, "1") + "}";
  EXPECT_TRUE(readObjectText(atLimit));

  const std::string overLimit = "{\"k\":" + nested("[", ']', kMaxFreeFormDepth, "1") + "}";
  auto over = readObjectText(overLimit);
  ASSERT_FALSE(over);
  EXPECT_EQ(over.error().kind, json::DecodingError::Kind::dataCorrupted);

  // Far beyond the limit: fails, does not exhaust the stack.
  EXPECT_FALSE(readObjectText(nested("{\"a\":", '}', 50000, "1")));
  EXPECT_FALSE(json::decodeText(nested("[", ']', 50000, ""), readJsonArray));
}

}  // namespace
}  // namespace vemba::checkout
