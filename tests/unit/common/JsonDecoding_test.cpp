#include "common/JsonDecoding.h"

#include <gtest/gtest.h>

#include <string>

namespace vemba::json {
namespace {

struct Pair {
  std::int64_t count;
  std::optional<std::string> name;
};

Pair decodePair(const Json& value, const JsonPath& path) {
  const Json& object = requireObject(value, path);
  return Pair{requireInt(object, "count", path), optionalString(object, "name", path)};
}

Expected<std::vector<Pair>, DecodingError> decodeList(std::string_view text) {
  return decodeText(text, [](const Json& root, const JsonPath& path) {
    const Json& object = requireObject(root, path);
    return decodeArray(requireKey(object, "items", path), path / "items", decodePair);
  });
}

TEST(JsonDecodingTest, FailuresNameTheKindAndThePath) {
  using Kind = DecodingError::Kind;
  struct Case {
    const char* text;
    Kind kind;
    const char* path;
  };
  const Case cases[] = {
      {R"({"items":[{"count":1},{"name":"x"}]})", Kind::keyNotFound, "items[1].count"},
      {R"({"items":[{"count":null}]})", Kind::valueNotFound, "items[0].count"},
      {R"({"items":[{"count":"1"}]})", Kind::typeMismatch, "items[0].count"},
      {R"({"items":[{"count":2.5}]})", Kind::dataCorrupted, "items[0].count"},
      {R"({"items":[{"count":1e300}]})", Kind::dataCorrupted, "items[0].count"},
      {R"({"items":[{"count":18446744073709551615}]})", Kind::dataCorrupted, "items[0].count"},
      {R"({"items":[{"count":1,"name":7}]})", Kind::typeMismatch, "items[0].name"},
      {R"({"items":{}})", Kind::typeMismatch, "items"},
      {R"([])", Kind::typeMismatch, ""},
      {"{\"items\":[{\"count\":1,\"name\":\"\xff\"}]}", Kind::dataCorrupted, ""},
      {"", Kind::dataCorrupted, ""},
      {"{\"items\":[]} trailing", Kind::dataCorrupted, ""},
  };
  for (const Case& c : cases) {
    const auto result = decodeList(c.text);
    ASSERT_FALSE(result) << c.text;
    EXPECT_EQ(result.error().kind, c.kind) << c.text;
    EXPECT_EQ(result.error().path, c.path) << c.text;
    if (*c.path != '\0') {
      EXPECT_NE(result.error().description().find(c.path), std::string::npos);
    }
  }
}

TEST(JsonDecodingTest, NullAndMissingOptionalsAreAbsentAndUnknownKeysIgnored) {
  const auto result =
      decodeList(R"({"items":[{"count":2.0,"name":null},{"count":-3,"extra":[1,{}]}],"x":1})");
  ASSERT_TRUE(result);
  ASSERT_EQ(result->size(), 2U);
  EXPECT_EQ((*result)[0].count, 2);
  EXPECT_FALSE((*result)[0].name);
  EXPECT_EQ((*result)[1].count, -3);
}

}  // namespace
}  // namespace vemba::json
