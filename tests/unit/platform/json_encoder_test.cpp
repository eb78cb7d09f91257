#include "platform/foundation/json_encoder.h"

#include <bit>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"

namespace kivo::platform {
namespace {

using namespace std::string_literals;

TEST(AJSONEncoder, WritesMembersCompactlyInCallOrder) {
  JSONEncoder inner;
  inner.encodeInteger("n", -1);
  JSONEncoder object;
  object.encodeString("z", "text");
  object.encodeBool("a", true);
  object.encodeBool("b", false);
  object.encodeObject("inner", std::move(inner));
  object.encodeDouble("d", 12.5);
  EXPECT_EQ(object.text(), R"({"z":"text","a":true,"b":false,"inner":{"n":-1},"d":12.5})");
}

TEST(AJSONEncoder, WritesAnEmptyObject) { EXPECT_EQ(JSONEncoder().text(), "{}"); }

TEST(AJSONEncoder, OmitsAbsentOptionals) {
  JSONEncoder object;
  object.encodeStringIfPresent("text", std::nullopt);
  object.encodeDoubleIfPresent("number", std::nullopt);
  EXPECT_EQ(object.text(), "{}");
  object.encodeStringIfPresent("text", "");
  object.encodeDoubleIfPresent("number", 0);
  EXPECT_EQ(object.text(), R"({"text":"","number":0.0})");
}

TEST(AJSONEncoder, WritesTextsThatRoundTrip) {
  for (const auto& text :
       {""s, "\"quoted\" back\\slash /slash"s, "line\nbreak\r\ttab"s, "\x01\x1f\x7f"s, "nul\0in"s,
        "جنيه ١٢٫٥ 💸 é"s, "\u2028\u2029\uFFFD\U0010FFFF"s}) {
    JSONEncoder object;
    object.encodeString("text", text);
    EXPECT_EQ(JSONDecoder::object(object.text()).decodeString("text"), text);
  }
}

TEST(AJSONEncoder, EscapesKeysLikeTexts) {
  JSONEncoder object;
  object.encodeBool("a\"b", true);
  EXPECT_EQ(object.text(), R"({"a\"b":true})");
}

TEST(AJSONEncoder, RepairsTextsThatAreNotUtf8) {
  JSONEncoder object;
  object.encodeString("text", "a\xff");
  EXPECT_EQ(object.text(), "{\"text\":\"a\uFFFD\"}");
}

TEST(AJSONEncoder, WritesDoublesThatRoundTrip) {
  for (const double number :
       {0.0, -0.0, 0.1, 0.1 + 0.2, 1.0 / 3, 150.0, -12.5, 1e16, 1e-5, 1e300, 5e-324,
        123456789.123456789, 9007199254740993.0, std::numeric_limits<double>::max(),
        std::numeric_limits<double>::min(), std::numeric_limits<double>::epsilon()}) {
    JSONEncoder object;
    object.encodeDouble("n", number);
    const double back = JSONDecoder::object(object.text()).decodeDouble("n");
    EXPECT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(number))
        << object.text();
  }
}

TEST(AJSONEncoder, WritesTheWholeRangeOfIntegers) {
  for (const std::int64_t number :
       {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max(),
        std::numeric_limits<std::int64_t>::min()}) {
    JSONEncoder object;
    object.encodeInteger("n", number);
    EXPECT_EQ(object.text(), R"({"n":)" + std::to_string(number) + "}");
    EXPECT_EQ(JSONDecoder::object(object.text()).decodeInteger("n"), number);
  }
}

TEST(AJSONEncoder, RefusesNumbersThatAreNotFinite) {
  for (const double number :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    JSONEncoder object;
    EXPECT_THROW(object.encodeDouble("n", number), NSError);
    EXPECT_THROW(object.encodeDoubleIfPresent("n", number), NSError);
    EXPECT_EQ(object.text(), "{}");
  }
}

TEST(AJSONEncoder, WritesAnArrayOfObjects) {
  std::vector<JSONEncoder> objects;
  EXPECT_EQ(JSONEncoder::arrayText(objects), "[]");
  objects.emplace_back();
  EXPECT_EQ(JSONEncoder::arrayText(objects), "[{}]");
  objects.emplace_back().encodeInteger("n", 2);
  EXPECT_EQ(JSONEncoder::arrayText(objects), R"([{},{"n":2}])");
}

}  // namespace
}  // namespace kivo::platform
