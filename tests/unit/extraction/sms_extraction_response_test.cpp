#include "extraction/sms_extraction_response.h"

#include <limits>

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "testkit/decoding_error.h"

namespace kivo {
namespace {

using platform::DecodingError;
using platform::JSONDecoder;
using Kind = DecodingError::Kind;
using SavedExpense = SMSExtractionResponse::SavedExpense;

const SavedExpense coffee{.id = "e-1",
                          .description = "Café \"Nile\"",
                          .amount = 45.5,
                          .category = "Food",
                          .expense_date = "2026-01-31"};

constexpr auto coffeeDocument =
    R"({"saved":true,"transaction_type":"expense","expense":{"id":"e-1",)"
    R"("description":"Café \"Nile\"","amount":45.5,"category":"Food","expense_date":"2026-01-31"}})";

DecodingError errorOf(const std::string& document) {
  return testkit::decodingErrorOf([&] { return SMSExtractionResponse::decode(document); });
}

void expectError(const std::string& document, Kind kind, const std::string& path) {
  SCOPED_TRACE(document);
  const DecodingError error = errorOf(document);
  EXPECT_EQ(error.kind(), kind);
  EXPECT_EQ(error.path(), path);
}

/// The document of a saved expense in which the text of `member` is `valueText`, or that has no
/// such member when it is empty.
std::string withMember(const std::string& member, const std::string& valueText) {
  std::string members;
  for (const auto& [name, text] : {std::pair<std::string, std::string>{"id", "\"1\""},
                                   {"description", "\"d\""},
                                   {"amount", "1"},
                                   {"category", "\"c\""},
                                   {"expense_date", "\"2026-01-31\""}}) {
    const std::string& value = name == member ? valueText : text;
    if (value.empty()) continue;
    members += (members.empty() ? "\"" : ",\"") + name + "\":" + value;
  }
  return R"({"saved":true,"expense":{)" + members + "}}";
}

TEST(AnExtractionResponse, NeedsOnlyTheMemberSaved) {
  const auto response = SMSExtractionResponse::decode(R"({"saved": false})");
  EXPECT_FALSE(response.saved);
  EXPECT_EQ(response.reason, std::nullopt);
  EXPECT_EQ(response.transaction_type, std::nullopt);
  EXPECT_EQ(response.expense, std::nullopt);
}

TEST(AnExtractionResponse, HoldsWhatTheBackendStored) {
  const auto response = SMSExtractionResponse::decode(coffeeDocument);
  EXPECT_TRUE(response.saved);
  EXPECT_EQ(response.reason, std::nullopt);
  EXPECT_EQ(response.transaction_type, "expense");
  EXPECT_EQ(response.expense, coffee);
}

TEST(AnExtractionResponse, CanBeSavedWithoutAnExpense) {
  const auto response = SMSExtractionResponse::decode(R"({"saved": true})");
  EXPECT_TRUE(response.saved);
  EXPECT_EQ(response.expense, std::nullopt);
}

TEST(AnExtractionResponse, NeedsABooleanSaved) {
  expectError("{}", Kind::keyNotFound, "saved");
  expectError(R"({"saved": null})", Kind::valueNotFound, "saved");
  for (const auto* const value : {"1", "0", "\"true\"", "[]", "{}"}) {
    expectError(std::string(R"({"saved":)") + value + "}", Kind::typeMismatch, "saved");
  }
  EXPECT_EQ(errorOf(R"({"saved": 1})").expected(), "boolean");
  EXPECT_EQ(errorOf(R"({"saved": 1})").found(), "number");
}

TEST(AnExtractionResponse, MustBeAnObject) {
  for (const auto* const document :
       {"[]", "true", "1", "\"saved\"", "null", "[{\"saved\":true}]"}) {
    expectError(document, Kind::typeMismatch, "");
  }
}

TEST(AnExtractionResponse, MustBeJSON) {
  for (const auto* const document :
       {"", "<html>502</html>", "{\"saved\":true", "{\"saved\":true}x", "{\"saved\":True}"}) {
    expectError(document, Kind::dataCorrupted, "");
  }
}

TEST(AnExtractionResponse, ReadsNullAndAbsentOptionalTextsAsAbsent) {
  EXPECT_EQ(SMSExtractionResponse::decode(R"({"saved":false,"reason":null})").reason, std::nullopt);
  EXPECT_EQ(
      SMSExtractionResponse::decode(R"({"saved":false,"transaction_type":null})").transaction_type,
      std::nullopt);
}

TEST(AnExtractionResponse, KeepsOptionalTextsUnchanged) {
  const auto response = SMSExtractionResponse::decode(
      R"({"saved":false,"reason":" Declined ","transaction_type":""})");
  EXPECT_EQ(response.reason, " Declined ");
  EXPECT_EQ(response.transaction_type, "");
}

TEST(AnExtractionResponse, RefusesOptionalTextsOfAnotherType) {
  for (const auto* const value : {"5", "true", "[]", "{}"}) {
    expectError(std::string(R"({"saved":false,"reason":)") + value + "}", Kind::typeMismatch,
                "reason");
    expectError(std::string(R"({"saved":false,"transaction_type":)") + value + "}",
                Kind::typeMismatch, "transaction_type");
  }
}

TEST(AnExtractionResponse, ReadsANullExpenseAsAbsent) {
  EXPECT_EQ(SMSExtractionResponse::decode(R"({"saved":true,"expense":null})").expense,
            std::nullopt);
}

TEST(AnExtractionResponse, RefusesAnExpenseThatIsNotAnObject) {
  for (const auto* const value : {"5", "true", "[]", "\"e\""}) {
    expectError(std::string(R"({"saved":true,"expense":)") + value + "}", Kind::typeMismatch,
                "expense");
  }
}

TEST(AnExtractionResponse, RefusesAnEmptyExpenseForItsMissingId) {
  expectError(R"({"saved":true,"expense":{}})", Kind::keyNotFound, "expense.id");
}

TEST(AnExtractionResponse, NeedsEveryMemberOfItsExpense) {
  for (const std::string member : {"id", "description", "amount", "category", "expense_date"}) {
    expectError(withMember(member, ""), Kind::keyNotFound, "expense." + member);
    expectError(withMember(member, "null"), Kind::valueNotFound, "expense." + member);
    expectError(withMember(member, "true"), Kind::typeMismatch, "expense." + member);
  }
}

TEST(AnExtractionResponse, RefusesExpenseTextsOfAnotherType) {
  for (const std::string member : {"id", "description", "category", "expense_date"}) {
    expectError(withMember(member, "17"), Kind::typeMismatch, "expense." + member);
    EXPECT_TRUE(SMSExtractionResponse::decode(withMember(member, "\"\"")).expense) << member;
  }
}

TEST(AnExtractionResponse, AcceptsAnAmountInAnyNumberFormat) {
  const auto amount = [](const std::string& text) {
    return SMSExtractionResponse::decode(withMember("amount", text)).expense->amount;
  };
  EXPECT_EQ(amount("250"), 250.0);
  EXPECT_EQ(amount("250.75"), 250.75);
  EXPECT_EQ(amount("-3"), -3.0);
  EXPECT_EQ(amount("1e3"), 1000.0);
}

TEST(AnExtractionResponse, RefusesAnAmountWrittenAsAText) {
  expectError(withMember("amount", "\"250\""), Kind::typeMismatch, "expense.amount");
  EXPECT_EQ(errorOf(withMember("amount", "\"250\"")).expected(), "number");
  EXPECT_EQ(errorOf(withMember("amount", "\"250\"")).found(), "string");
}

TEST(AnExtractionResponse, RefusesAnAmountBeyondTheRangeOfADouble) {
  EXPECT_EQ(errorOf(withMember("amount", "1e400")).kind(), Kind::dataCorrupted);
}

TEST(AnExtractionResponse, NamesTheFirstMemberThatFails) {
  expectError(R"({"saved":0,"reason":0})", Kind::typeMismatch, "saved");
  expectError(R"({"expense":0,"transaction_type":0,"reason":0,"saved":true})", Kind::typeMismatch,
              "reason");
  expectError(R"({"expense":0,"transaction_type":0,"saved":true})", Kind::typeMismatch,
              "transaction_type");
  expectError(R"({"saved":true,"expense":{"expense_date":0,"category":0,"amount":"","id":"1"}})",
              Kind::keyNotFound, "expense.description");
  expectError(
      R"({"saved":true,"expense":{"expense_date":0,"category":0,"amount":"","id":"","description":""}})",
      Kind::typeMismatch, "expense.amount");
  expectError(
      R"({"saved":true,"expense":{"expense_date":0,"category":0,"amount":1,"id":"","description":""}})",
      Kind::typeMismatch, "expense.category");
}

TEST(AnExtractionResponse, IgnoresUnknownMembers) {
  const auto response = SMSExtractionResponse::decode(
      R"({"version":[1,{"a":null}],"Saved":0,"transactionType":5,"0":true,"saved":true,)"
      R"("expense":{"id":"1","ID":2,"description":"d","amount":1,"currency":null,"category":"c",)"
      R"("expenseDate":5,"expense_date":"x"}})");
  EXPECT_TRUE(response.saved);
  EXPECT_EQ(response.transaction_type, std::nullopt);
  EXPECT_EQ(response.expense,
            (SavedExpense{
                .id = "1", .description = "d", .amount = 1, .category = "c", .expense_date = "x"}));
}

TEST(AnExtractionResponse, MatchesMemberNamesExactly) {
  expectError(R"({"Saved":true,"SAVED":true})", Kind::keyNotFound, "saved");
  expectError(R"({"saved":true,"expense":{"Id":"1"}})", Kind::keyNotFound, "expense.id");
}

TEST(AnExtractionResponse, IsWrittenWithoutAbsentMembers) {
  EXPECT_EQ(SMSExtractionResponse{.saved = false}.encode(), R"({"saved":false})");
  EXPECT_EQ((SMSExtractionResponse{.saved = false, .reason = "declined"}.encode()),
            R"({"saved":false,"reason":"declined"})");
}

TEST(AnExtractionResponse, IsWrittenInTheOrderOfItsFields) {
  const SMSExtractionResponse response{
      .saved = true, .reason = "r", .transaction_type = "income", .expense = coffee};
  EXPECT_EQ(response.encode(),
            R"({"saved":true,"reason":"r","transaction_type":"income","expense":{"id":"e-1",)"
            R"("description":"Café \"Nile\"","amount":45.5,"category":"Food",)"
            R"("expense_date":"2026-01-31"}})");
}

TEST(AnExtractionResponse, SurvivesARoundTrip) {
  const SavedExpense odd{.id = "",
                         .description = "line\nbreak \\ \u0001 💸",
                         .amount = -0.1 - 0.2,
                         .category = "__system_transfer__",
                         .expense_date = "not a date"};
  for (const auto& response :
       {SMSExtractionResponse{.saved = false}, SMSExtractionResponse{.saved = true, .reason = ""},
        SMSExtractionResponse{.saved = true, .transaction_type = "transfer", .expense = coffee},
        SMSExtractionResponse{
            .saved = false, .reason = "declined", .transaction_type = "x", .expense = odd}}) {
    EXPECT_EQ(SMSExtractionResponse::decode(response.encode()), response);
  }
}

TEST(AnExtractionResponse, CannotBeWrittenWithAnAmountThatIsNotFinite) {
  SMSExtractionResponse response{.saved = true, .expense = coffee};
  response.expense->amount = std::numeric_limits<double>::infinity();
  EXPECT_THROW(static_cast<void>(response.encode()), platform::NSError);
}

TEST(ASavedExpense, IsWrittenWithAllFiveMembers) {
  EXPECT_EQ(coffee.encode().text(),
            R"({"id":"e-1","description":"Café \"Nile\"","amount":45.5,"category":"Food",)"
            R"("expense_date":"2026-01-31"})");
  EXPECT_EQ(
      (SavedExpense{.id = "", .description = "", .amount = 250, .category = "", .expense_date = ""})
          .encode()
          .text(),
      R"({"id":"","description":"","amount":250.0,"category":"","expense_date":""})");
}

TEST(ASavedExpense, SurvivesARoundTrip) {
  EXPECT_EQ(SavedExpense::decode(JSONDecoder::object(coffee.encode().text())), coffee);
}

TEST(ASavedExpense, IsCopiedWhole) {
  SavedExpense copy = coffee;
  copy.description += " twice";
  EXPECT_EQ(coffee.description, "Café \"Nile\"");
  EXPECT_NE(copy, coffee);
}

}  // namespace
}  // namespace kivo
