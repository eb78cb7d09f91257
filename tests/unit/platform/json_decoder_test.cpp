#include "platform/foundation/json_decoder.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"

namespace kivo::platform {
namespace {

using Kind = DecodingError::Kind;
using namespace std::string_literals;

template <typename Reading>
DecodingError errorOf(Reading reading) {
  try {
    static_cast<void>(reading());
  } catch (const DecodingError& error) {
    return error;
  }
  ADD_FAILURE() << "no DecodingError was thrown";
  return {Kind::dataCorrupted, "none was thrown"};
}

DecodingError documentError(const std::string& document) {
  SCOPED_TRACE(document.substr(0, 60));
  return errorOf([&] { return JSONDecoder::object(document); });
}

std::string nested(std::size_t depth, char open, char close) {
  return std::string(depth, open) + std::string(depth, close);
}

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

TEST(AJSONObject, FindsMembersByExactNameOnly) {
  const auto object = JSONDecoder::object(R"({"Saved": true, "saved ": true, "0": true})");
  EXPECT_EQ(errorOf([&] { return object.decodeBool("saved"); }).kind(), Kind::keyNotFound);
}

TEST(AJSONObject, TellsAnAbsentMemberFromANullAndFromAnotherType) {
  const auto object = JSONDecoder::object(R"({"null": null, "number": 1})");
  const auto absent = errorOf([&] { return object.decodeBool("absent"); });
  EXPECT_EQ(absent.kind(), Kind::keyNotFound);
  EXPECT_EQ(absent.path(), "absent");
  const auto null = errorOf([&] { return object.decodeBool("null"); });
  EXPECT_EQ(null.kind(), Kind::valueNotFound);
  EXPECT_EQ(null.path(), "null");
  const auto number = errorOf([&] { return object.decodeBool("number"); });
  EXPECT_EQ(number.kind(), Kind::typeMismatch);
  EXPECT_EQ(number.path(), "number");
  EXPECT_EQ(number.expected(), "boolean");
  EXPECT_EQ(number.found(), "number");
}

TEST(AJSONObject, NamesEveryTypeThatItFinds) {
  const auto object = JSONDecoder::object(
      R"({"object": {}, "array": [], "string": "", "number": 1e0, "boolean": false})");
  for (const auto* const type : {"object", "array", "number", "boolean"}) {
    const auto error = errorOf([&] { return object.decodeString(type); });
    EXPECT_EQ(error.kind(), Kind::typeMismatch);
    EXPECT_EQ(error.expected(), "string");
    EXPECT_EQ(error.found(), type);
  }
  const auto string = errorOf([&] { return object.decodeDouble("string"); });
  EXPECT_EQ(string.expected(), "number");
  EXPECT_EQ(string.found(), "string");
  EXPECT_EQ(errorOf([&] { return object.decodeInteger("string"); }).kind(), Kind::typeMismatch);
  EXPECT_EQ(errorOf([&] { return object.decodeInteger("boolean"); }).kind(), Kind::typeMismatch);
  EXPECT_EQ(errorOf([&] { return object.decodeDouble("boolean"); }).kind(), Kind::typeMismatch);
  EXPECT_EQ(errorOf([&] { return object.decodeObjectIfPresent("array"); }).expected(), "object");
}

TEST(AJSONObject, AnswersNoneForAnAbsentOrNullMember) {
  const auto object = JSONDecoder::object(R"({"null": null})");
  for (const auto* const key : {"absent", "null"}) {
    EXPECT_EQ(object.decodeStringIfPresent(key), std::nullopt);
    EXPECT_EQ(object.decodeDoubleIfPresent(key), std::nullopt);
    EXPECT_FALSE(object.decodeObjectIfPresent(key).has_value());
  }
}

TEST(AJSONObject, RefusesAnotherTypeEvenWhereAMemberMayBeAbsent) {
  const auto object = JSONDecoder::object(R"({"member": true})");
  EXPECT_EQ(errorOf([&] { return object.decodeStringIfPresent("member"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(errorOf([&] { return object.decodeDoubleIfPresent("member"); }).kind(),
            Kind::typeMismatch);
  EXPECT_EQ(errorOf([&] { return object.decodeObjectIfPresent("member"); }).kind(),
            Kind::typeMismatch);
}

TEST(AJSONObject, PutsTheOuterKeysInFrontOfAMembersPath) {
  const auto top = JSONDecoder::object(R"({"expense": {"amount": "5", "inner": {}}})");
  const auto expense = top.decodeObjectIfPresent("expense");
  ASSERT_TRUE(expense);
  EXPECT_EQ(errorOf([&] { return expense->decodeDouble("amount"); }).path(), "expense.amount");
  EXPECT_EQ(errorOf([&] { return expense->decodeObjectIfPresent("amount"); }).path(),
            "expense.amount");
  const auto inner = expense->decodeObjectIfPresent("inner");
  ASSERT_TRUE(inner);
  EXPECT_EQ(errorOf([&] { return inner->decodeBool("x"); }).path(), "expense.inner.x");

  const auto elements = JSONDecoder::arrayOfObjects(R"([{}, {}, {"source": 1}])");
  EXPECT_EQ(errorOf([&] { return elements.at(2).decodeString("source"); }).path(), "[2].source");
}

TEST(AJSONObject, KeepsItsDocumentAlive) {
  std::optional<JSONObject> inner;
  {
    const auto top = JSONDecoder::object(R"({"inner": {"text": "still here"}})");
    inner = top.decodeObjectIfPresent("inner");
  }
  EXPECT_EQ(inner->decodeString("text"), "still here");
}

TEST(AJSONObject, TakesTheLastOfDoubledMembers) {
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

TEST(AJSONObject, AcceptsIntegralNumbersInWhateverFormTheyAreWritten) {
  const auto read = [](const std::string& number) {
    return JSONDecoder::object(R"({"n":)" + number + "}").decodeInteger("n");
  };
  for (const auto* const three : {"3", "3.0", "3e0", "3E+0", "30e-1", "0.3e1", "3.000"}) {
    EXPECT_EQ(read(three), 3) << three;
  }
  EXPECT_EQ(read("0"), 0);
  EXPECT_EQ(read("-0"), 0);
  EXPECT_EQ(read("-0.0"), 0);
  EXPECT_EQ(read("-12"), -12);
  EXPECT_EQ(read("1e18"), 1000000000000000000);
  EXPECT_EQ(read("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(read("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
}

TEST(AJSONObject, RefusesNumbersThatAreNotIntegralOrDoNotFit) {
  for (const auto* const number :
       {"3.5", "-0.5", "1e-1", "9223372036854775808", "18446744073709551615",
        "18446744073709551616", "-9223372036854775809", "1e19", "-1e19", "1e300"}) {
    const auto object = JSONDecoder::object(R"({"n":)" + std::string(number) + "}");
    const auto error = errorOf([&] { return object.decodeInteger("n"); });
    EXPECT_EQ(error.kind(), Kind::dataCorrupted) << number;
    EXPECT_EQ(error.path(), "n");
  }
}

TEST(AJSONDocument, MustHoldAnObjectAtTheTop) {
  for (const auto& [document, found] :
       {std::pair("[]", "array"), std::pair("\"text\"", "string"), std::pair("1", "number"),
        std::pair("true", "boolean"), std::pair("null", "null")}) {
    const auto error = documentError(document);
    EXPECT_EQ(error.kind(), Kind::typeMismatch);
    EXPECT_EQ(error.path(), "");
    EXPECT_EQ(error.expected(), "object");
    EXPECT_EQ(error.found(), found);
  }
}

TEST(AJSONDocument, ThatIsNoJSONIsCorrupted) {
  for (const auto* const document : {"",
                                     " ",
                                     "{",
                                     "{}}",
                                     "{} {}",
                                     "{}x",
                                     "{}//",
                                     "{\"a\":1,}",
                                     "{a:1}",
                                     "{'a':1}",
                                     "{\"a\"}",
                                     "{\"a\":01}",
                                     "{\"a\":+1}",
                                     "{\"a\":.5}",
                                     "{\"a\":5.}",
                                     "{\"a\":1e}",
                                     "{\"a\":NaN}",
                                     "{\"a\":Infinity}",
                                     "{\"a\":-}",
                                     "{\"a\":\"\n\"}",
                                     "{\"a\":\"\\x\"}",
                                     "{\"a\":\"\\ud800\"}",
                                     "{\"a\":\"\\udc00\"}",
                                     "nul",
                                     "<html></html>"}) {
    const auto error = documentError(document);
    EXPECT_EQ(error.kind(), Kind::dataCorrupted) << document;
    EXPECT_EQ(error.path(), "") << document;
  }
}

TEST(AJSONDocument, IsCorruptedByANulAnywhere) {
  for (const auto& document :
       {"{}\0"s, "\0{}"s, "{}\0garbage"s, "{\0}"s, "{\"a\":\"b\0c\"}"s, "{} \0 "s}) {
    EXPECT_EQ(documentError(document).kind(), Kind::dataCorrupted);
  }
}

TEST(AJSONDocument, IsCorruptedByBytesThatAreNoUtf8) {
  for (const auto* const bytes : {"\xff", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
    EXPECT_EQ(documentError("{\"a\":\""s + bytes + "\"}").kind(), Kind::dataCorrupted);
    EXPECT_EQ(documentError("{\""s + bytes + "\":1}").kind(), Kind::dataCorrupted);
    EXPECT_EQ(documentError("{}"s + bytes).kind(), Kind::dataCorrupted);
  }
}

TEST(AJSONDocument, IsCorruptedByANumberPastTheRangeOfADoubleWhereverItStands) {
  for (const auto& number : {"1e309"s, "-1e400"s, std::string(400, '9')}) {
    for (const auto& document :
         {"{\"saved\":true,\"ignored\":" + number + "}", "{\"a\":[[{\"b\":" + number + "}]]}",
          "{\"a\":" + number + ",\"a\":1}"}) {
      EXPECT_EQ(documentError(document).kind(), Kind::dataCorrupted);
    }
  }
}

TEST(AJSONDocument, MayBeginWithAByteOrderMark) {
  EXPECT_TRUE(JSONDecoder::object("\xEF\xBB\xBF{\"a\":true}").decodeBool("a"));
}

TEST(AJSONDocument, MayBeNestedAMillionDeepInAnIgnoredMember) {
  constexpr std::size_t depth = 1'000'000;
  const auto object =
      JSONDecoder::object(R"({"ignored":)" + nested(depth, '[', ']') + R"(,"saved":true})");
  EXPECT_TRUE(object.decodeBool("saved"));
  EXPECT_EQ(errorOf([&] { return object.decodeString("ignored"); }).found(), "array");
}

TEST(AJSONDocument, MayBeNestedAMillionDeepInObjects) {
  std::string document;
  for (int i = 0; i < 1'000'000; ++i) document += R"({"a":)";
  document += "1" + std::string(1'000'000, '}');
  EXPECT_TRUE(JSONDecoder::object(document).decodeObjectIfPresent("a").has_value());
}

TEST(AJSONDocument, ThatIsNestedDeepAndCutOffIsCorrupted) {
  EXPECT_EQ(documentError(R"({"a":)" + std::string(1'000'000, '[')).kind(), Kind::dataCorrupted);
  EXPECT_EQ(documentError(std::string(1'000'000, '[')).kind(), Kind::dataCorrupted);
}

TEST(AJSONDocument, DropsADeeplyNestedMemberThatALaterOneReplaces) {
  const auto object =
      JSONDecoder::object(R"({"a":)" + nested(1'000'000, '[', ']') + R"(,"a":false})");
  EXPECT_FALSE(object.decodeBool("a"));
}

TEST(AJSONArray, YieldsItsObjectsInOrder) {
  const auto objects = JSONDecoder::arrayOfObjects(R"([{"n":1},{"n":2},{"n":3}])");
  ASSERT_EQ(objects.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(objects[i].decodeInteger("n"), static_cast<std::int64_t>(i) + 1);
  }
  EXPECT_TRUE(JSONDecoder::arrayOfObjects("[]").empty());
}

TEST(AJSONArray, HoldsObjectsOnly) {
  const auto error = errorOf([] { JSONDecoder::arrayOfObjects(R"([{}, {}, 5])"); });
  EXPECT_EQ(error.kind(), Kind::typeMismatch);
  EXPECT_EQ(error.path(), "[2]");
  EXPECT_EQ(error.expected(), "object");
  EXPECT_EQ(error.found(), "number");
  EXPECT_EQ(errorOf([] { return JSONDecoder::arrayOfObjects("[null]"); }).kind(),
            Kind::typeMismatch);
}

TEST(AJSONArray, MustBeAtTheTop) {
  const auto error = errorOf([] { JSONDecoder::arrayOfObjects("{}"); });
  EXPECT_EQ(error.kind(), Kind::typeMismatch);
  EXPECT_EQ(error.path(), "");
  EXPECT_EQ(error.expected(), "array");
  EXPECT_EQ(error.found(), "object");
  EXPECT_EQ(errorOf([] { JSONDecoder::arrayOfObjects("[{}"); }).kind(), Kind::dataCorrupted);
}

TEST(ADecodingError, HoldsNothingOfTheData) {
  const auto object = JSONDecoder::object(R"({"amount": "secret"})");
  const std::string line = errorOf([&] { return object.decodeDouble("amount"); }).what();
  EXPECT_EQ(line, "DecodingError typeMismatch at amount: expected number, found string");
  EXPECT_EQ(documentError("{\"smsText\": \"secret").what(), "DecodingError dataCorrupted"s);
}

}  // namespace
}  // namespace kivo::platform
