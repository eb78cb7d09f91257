#include "platform/foundation/json_decoder.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "testkit/decoding_error.h"

namespace kivo::platform {
namespace {

using testkit::decodingErrorOf;
using Kind = DecodingError::Kind;
using namespace std::string_literals;

TEST(AJSONObject, ReadsMembersOfEachType) {
  const auto object = JSONDecoder::object(
      R"( {"bool": true, "text": "a\"b\\\u00e9\ud83d\udcb8", "number": 12.5, "count": -7} )"
      "\r\n\t");
  EXPECT_TRUE(object.decodeBool("bool"));
  EXPECT_EQ(object.decodeString("text"), "a\"b\\é💸");
  EXPECT_EQ(object.decodeDouble("number"), 12.5);
  EXPECT_EQ(object.decodeInteger("count"), -7);
}

TEST(AJSONObject, KeepsAnEscapedNulInAText) {
  EXPECT_EQ(JSONDecoder::object(R"({"text":"a\u0000b"})").decodeString("text"), "a\0b"s);
}

TEST(AJSONObject, MatchesMemberNamesExactly) {
  const auto object = JSONDecoder::object(R"({"Saved": true, "saved ": true, "0": true})");
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeBool("saved"); }).kind(), Kind::keyNotFound);
}

TEST(AJSONObject, DistinguishesAbsentNullAndWrongType) {
  const auto object = JSONDecoder::object(R"({"null": null, "number": 1})");
  const auto absent = decodingErrorOf([&] { return object.decodeBool("absent"); });
  EXPECT_EQ(absent.kind(), Kind::keyNotFound);
  EXPECT_EQ(absent.path(), "absent");
  const auto null = decodingErrorOf([&] { return object.decodeBool("null"); });
  EXPECT_EQ(null.kind(), Kind::valueNotFound);
  EXPECT_EQ(null.path(), "null");
  const auto number = decodingErrorOf([&] { return object.decodeBool("number"); });
  EXPECT_EQ(number.kind(), Kind::typeMismatch);
  EXPECT_EQ(number.path(), "number");
  EXPECT_EQ(number.expected(), "boolean");
  EXPECT_EQ(number.found(), "number");
}

TEST(AJSONObject, NamesEveryTypeThatItFinds) {
  const auto object = JSONDecoder::object(
      R"({"object": {}, "array": [], "string": "", "number": 1e0, "boolean": false})");
  for (const auto* const type : {"object", "array", "number", "boolean"}) {
    const auto error = decodingErrorOf([&] { return object.decodeString(type); });
    EXPECT_EQ(error.kind(), Kind::typeMismatch);
    EXPECT_EQ(error.expected(), "string");
    EXPECT_EQ(error.found(), type);
  }
  const auto string = decodingErrorOf([&] { return object.decodeDouble("string"); });
  EXPECT_EQ(string.expected(), "number");
  EXPECT_EQ(string.found(), "string");
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeInteger("string"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeInteger("boolean"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeDouble("boolean"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeObjectIfPresent("array"); }).expected(),
            "object");
}

TEST(AJSONObject, ReturnsNulloptForAnAbsentOrNullMember) {
  const auto object = JSONDecoder::object(R"({"null": null})");
  for (const auto* const key : {"absent", "null"}) {
    EXPECT_EQ(object.decodeStringIfPresent(key), std::nullopt);
    EXPECT_EQ(object.decodeDoubleIfPresent(key), std::nullopt);
    EXPECT_FALSE(object.decodeObjectIfPresent(key).has_value());
  }
}

TEST(AJSONObject, RefusesTheWrongTypeOfAnOptionalMember) {
  const auto object = JSONDecoder::object(R"({"member": true})");
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeStringIfPresent("member"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeDoubleIfPresent("member"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeObjectIfPresent("member"); }).kind(),
            Kind::typeMismatch);
}

TEST(AJSONObject, PrefixesTheErrorPathWithOuterKeys) {
  const auto top = JSONDecoder::object(R"({"expense": {"amount": "5", "inner": {}}})");
  const auto expense = top.decodeObjectIfPresent("expense");
  ASSERT_TRUE(expense);
  EXPECT_EQ(decodingErrorOf([&] { return expense->decodeDouble("amount"); }).path(),
            "expense.amount");
  EXPECT_EQ(decodingErrorOf([&] { return expense->decodeObjectIfPresent("amount"); }).path(),
            "expense.amount");
  const auto inner = expense->decodeObjectIfPresent("inner");
  ASSERT_TRUE(inner);
  EXPECT_EQ(decodingErrorOf([&] { return inner->decodeBool("x"); }).path(), "expense.inner.x");

  const auto elements = JSONDecoder::arrayOfObjects(R"([{}, {}, {"source": 1}])");
  EXPECT_EQ(decodingErrorOf([&] { return elements.at(2).decodeString("source"); }).path(),
            "[2].source");
}

TEST(AJSONObject, KeepsItsDocumentAlive) {
  std::optional<JSONObject> inner;
  {
    const auto top = JSONDecoder::object(R"({"inner": {"text": "still here"}})");
    inner = top.decodeObjectIfPresent("inner");
  }
  EXPECT_EQ(inner->decodeString("text"), "still here");
}

TEST(AJSONObject, UsesTheLastOfDuplicateMembers) {
  const auto object = JSONDecoder::object(
      R"({"a": "first", "a": 2, "b": 1, "b": null, "c": {"x": 1}, "c": {"y": 2}})");
  EXPECT_EQ(object.decodeDouble("a"), 2);
  EXPECT_EQ(object.decodeDoubleIfPresent("b"), std::nullopt);
  const auto c = object.decodeObjectIfPresent("c");
  EXPECT_EQ(c->decodeDoubleIfPresent("x"), std::nullopt);
  EXPECT_EQ(c->decodeDouble("y"), 2);
}

TEST(AJSONObject, ReadsEveryNumberAsTheNearestDouble) {
  const auto read = [](const std::string& number) {
    return JSONDecoder::object(R"({"n":)" + number + "}").decodeDouble("n");
  };
  EXPECT_EQ(read("250"), 250.0);
  EXPECT_EQ(read("-3"), -3.0);
  EXPECT_EQ(read("0.1"), 0.1);
  EXPECT_EQ(read("1234.56"), 1234.56);
  EXPECT_EQ(read("0.30000000000000004"), 0.1 + 0.2);
  EXPECT_EQ(read("9007199254740993"), 9007199254740992.0);
  EXPECT_EQ(read("18446744073709551615"), 18446744073709551616.0);
  EXPECT_EQ(read("123456789012345678901234567890"), 123456789012345678901234567890.0);
  EXPECT_EQ(read("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_EQ(read("5e-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(read("1e-400"), 0.0);
  for (int cents = 0; cents < 100000; cents += 7) {
    const std::string text = std::to_string(cents / 100) + "." + std::to_string(cents / 10 % 10) +
                             std::to_string(cents % 10);
    ASSERT_EQ(read(text), cents / 100.0) << text;
  }
}

TEST(AJSONObject, KeepsTheSignOfZero) {
  const auto isNegative = [](const std::string& number) {
    const double value = JSONDecoder::object(R"({"n":)" + number + "}").decodeDouble("n");
    EXPECT_EQ(value, 0.0) << number;
    return std::signbit(value);
  };
  for (const auto* const zero : {"-0", "-0.0", "-0e0", "-0E+5", "-1e-400"}) {
    EXPECT_TRUE(isNegative(zero)) << zero;
  }
  for (const auto* const zero : {"0", "0.0", "0e0", "1e-400"}) {
    EXPECT_FALSE(isNegative(zero)) << zero;
  }
}

TEST(AJSONObject, AcceptsIntegersInEveryNumberFormat) {
  const auto read = [](const std::string& number) {
    return JSONDecoder::object(R"({"n":)" + number + "}").decodeInteger("n");
  };
  for (const auto* const three : {"3", "3.0", "3e0", "3E+0", "30e-1", "0.3e1", "3.000"}) {
    EXPECT_EQ(read(three), 3) << three;
  }
  EXPECT_EQ(read("0"), 0);
  EXPECT_EQ(read("-0"), 0);
  EXPECT_EQ(read("-0.0"), 0);
  EXPECT_EQ(read("-0e0"), 0);
  EXPECT_EQ(read("-12"), -12);
  EXPECT_EQ(read("1e18"), 1000000000000000000);
  EXPECT_EQ(read("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(read("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
}

TEST(AJSONObject, RefusesIntegersWithAFractionOrOutOfRange) {
  for (const auto* const number :
       {"3.5", "-0.5", "1e-1", "9223372036854775808", "18446744073709551615",
        "18446744073709551616", "-9223372036854775809", "1e19", "-1e19", "1e300"}) {
    const auto object = JSONDecoder::object(R"({"n":)" + std::string(number) + "}");
    const auto error = decodingErrorOf([&] { return object.decodeInteger("n"); });
    EXPECT_EQ(error.kind(), Kind::dataCorrupted) << number;
    EXPECT_EQ(error.path(), "n");
  }
}

}  // namespace
}  // namespace kivo::platform
