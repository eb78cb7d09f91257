#include <cstdint>
#include <utility>

#include <gtest/gtest.h>

#include "platform/foundation/json_decoder.h"
#include "testkit/decoding_error.h"

namespace kivo::platform {
namespace {

using testkit::decodingErrorOf;
using Kind = DecodingError::Kind;
using namespace std::string_literals;

DecodingError documentError(const std::string& document) {
  SCOPED_TRACE(document.substr(0, 60));
  return decodingErrorOf([&] { return JSONDecoder::object(document); });
}

std::string nested(std::size_t depth, char open, char close) {
  return std::string(depth, open) + std::string(depth, close);
}

TEST(AJSONDocument, NeedsAnObjectAtTheTop) {
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

TEST(AJSONDocument, IsCorruptedWhenItIsNotJSON) {
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

TEST(AJSONDocument, IsCorruptedByInvalidUtf8) {
  for (const auto* const bytes : {"\xff", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
    EXPECT_EQ(documentError("{\"a\":\""s + bytes + "\"}").kind(), Kind::dataCorrupted);
    EXPECT_EQ(documentError("{\""s + bytes + "\":1}").kind(), Kind::dataCorrupted);
    EXPECT_EQ(documentError("{}"s + bytes).kind(), Kind::dataCorrupted);
  }
}

TEST(AJSONDocument, IsCorruptedByAnyNumberBeyondTheRangeOfADouble) {
  for (const auto& number : {"1e309"s, "-1e400"s, std::string(400, '9')}) {
    for (const auto& document :
         {"{\"saved\":true,\"ignored\":" + number + "}", "{\"a\":[[{\"b\":" + number + "}]]}",
          "{\"a\":" + number + ",\"a\":1}"}) {
      EXPECT_EQ(documentError(document).kind(), Kind::dataCorrupted);
    }
  }
}

TEST(AJSONDocument, CanBeginWithAByteOrderMark) {
  EXPECT_TRUE(JSONDecoder::object("\xEF\xBB\xBF{\"a\":true}").decodeBool("a"));
}

TEST(AJSONDocument, CanBeNestedAMillionDeepInAnIgnoredMember) {
  constexpr std::size_t depth = 1'000'000;
  const auto object =
      JSONDecoder::object(R"({"ignored":)" + nested(depth, '[', ']') + R"(,"saved":true})");
  EXPECT_TRUE(object.decodeBool("saved"));
  EXPECT_EQ(decodingErrorOf([&] { return object.decodeString("ignored"); }).found(), "array");
}

TEST(AJSONDocument, CanBeNestedAMillionDeepInObjects) {
  std::string document;
  for (int i = 0; i < 1'000'000; ++i) document += R"({"a":)";
  document += "1" + std::string(1'000'000, '}');
  EXPECT_TRUE(JSONDecoder::object(document).decodeObjectIfPresent("a").has_value());
}

TEST(AJSONDocument, IsCorruptedWhenItIsDeeplyNestedAndTruncated) {
  EXPECT_EQ(documentError(R"({"a":)" + std::string(1'000'000, '[')).kind(), Kind::dataCorrupted);
  EXPECT_EQ(documentError(std::string(1'000'000, '[')).kind(), Kind::dataCorrupted);
}

TEST(AJSONDocument, ReplacesADeeplyNestedMemberWithALaterOne) {
  const auto object =
      JSONDecoder::object(R"({"a":)" + nested(1'000'000, '[', ']') + R"(,"a":false})");
  EXPECT_FALSE(object.decodeBool("a"));
}

TEST(AJSONArray, ReturnsItsObjectsInOrder) {
  const auto objects = JSONDecoder::arrayOfObjects(R"([{"n":1},{"n":2},{"n":3}])");
  ASSERT_EQ(objects.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(objects[i].decodeInteger("n"), static_cast<std::int64_t>(i) + 1);
  }
  EXPECT_TRUE(JSONDecoder::arrayOfObjects("[]").empty());
}

TEST(AJSONArray, RefusesElementsThatAreNotObjects) {
  const auto error = decodingErrorOf([] { JSONDecoder::arrayOfObjects(R"([{}, {}, 5])"); });
  EXPECT_EQ(error.kind(), Kind::typeMismatch);
  EXPECT_EQ(error.path(), "[2]");
  EXPECT_EQ(error.expected(), "object");
  EXPECT_EQ(error.found(), "number");
  EXPECT_EQ(decodingErrorOf([] { return JSONDecoder::arrayOfObjects("[null]"); }).kind(),
            Kind::typeMismatch);
}

TEST(AJSONArray, MustBeAtTheTop) {
  const auto error = decodingErrorOf([] { JSONDecoder::arrayOfObjects("{}"); });
  EXPECT_EQ(error.kind(), Kind::typeMismatch);
  EXPECT_EQ(error.path(), "");
  EXPECT_EQ(error.expected(), "array");
  EXPECT_EQ(error.found(), "object");
  EXPECT_EQ(decodingErrorOf([] { JSONDecoder::arrayOfObjects("[{}"); }).kind(),
            Kind::dataCorrupted);
}

TEST(ADecodingError, ContainsNothingOfTheData) {
  const auto object = JSONDecoder::object(R"({"amount": "secret"})");
  const std::string line = decodingErrorOf([&] { return object.decodeDouble("amount"); }).what();
  EXPECT_EQ(line, "DecodingError typeMismatch at amount: expected number, found string");
  EXPECT_EQ(documentError("{\"smsText\": \"secret").what(), "DecodingError dataCorrupted"s);
}

}  // namespace
}  // namespace kivo::platform
