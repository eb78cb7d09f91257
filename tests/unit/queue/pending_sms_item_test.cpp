#include "queue/pending_sms_item.h"

#include <limits>

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "testkit/decoding_error.h"

namespace kivo {
namespace {

using platform::DecodingError;
using platform::JSONDecoder;
using Kind = DecodingError::Kind;

const PendingSmsItem message{.id = "0F8FAD5B-D9CB-469F-A165-70867728950E",
                             .smsText = "  Paid 12.50 EGP at \"Nile\"\n",
                             .expenseDate = "2026-01-31",
                             .queuedAt = "2026-01-31T09:05:07Z",
                             .retryCount = 0,
                             .source = "sms"};

PendingSmsItem manualExpense() {
  PendingSmsItem item = message;
  item.source = "apple_pay";
  item.amount = 12.5;
  item.merchant = "Nile";
  return item;
}

PendingSmsItem decode(const std::string& document) {
  return PendingSmsItem::decode(JSONDecoder::object(document));
}

/// The document of a queued message in which the text of `member` is `valueText`, or that has no
/// such member when it is empty.
std::string withMember(const std::string& member, const std::string& valueText) {
  std::string members;
  for (const auto& [name, text] : {std::pair<std::string, std::string>{"id", "\"1\""},
                                   {"smsText", "\"paid\""},
                                   {"expenseDate", "\"2026-01-31\""},
                                   {"queuedAt", "\"2026-01-31T09:05:07Z\""},
                                   {"retryCount", "2"},
                                   {"source", "\"sms\""},
                                   {"amount", ""},
                                   {"merchant", ""}}) {
    const std::string& value = name == member ? valueText : text;
    if (value.empty()) continue;
    members += (members.empty() ? "\"" : ",\"") + name + "\":" + value;
  }
  return "{" + members + "}";
}

void expectError(const std::string& document, Kind kind, const std::string& path) {
  SCOPED_TRACE(document);
  const DecodingError error = testkit::decodingErrorOf([&] { return decode(document); });
  EXPECT_EQ(error.kind(), kind);
  EXPECT_EQ(error.path(), path);
}

TEST(APendingItem, IsWrittenWithItsFieldsAsKeys) {
  EXPECT_EQ(manualExpense().encode().text(),
            R"({"id":"0F8FAD5B-D9CB-469F-A165-70867728950E",)"
            R"("smsText":"  Paid 12.50 EGP at \"Nile\"\n","expenseDate":"2026-01-31",)"
            R"("queuedAt":"2026-01-31T09:05:07Z","retryCount":0,"source":"apple_pay",)"
            R"("amount":12.5,"merchant":"Nile"})");
}

TEST(APendingItem, IsWrittenWithoutAnAbsentAmountAndMerchant) {
  EXPECT_EQ(message.encode().text(),
            R"({"id":"0F8FAD5B-D9CB-469F-A165-70867728950E",)"
            R"("smsText":"  Paid 12.50 EGP at \"Nile\"\n","expenseDate":"2026-01-31",)"
            R"("queuedAt":"2026-01-31T09:05:07Z","retryCount":0,"source":"sms"})");
}

TEST(APendingItem, RoundTrips) {
  PendingSmsItem odd = manualExpense();
  odd.smsText = "خصم ١٢٫٥٠ ج.م 💸\r\n\t\\ \u0001";
  odd.amount = 0.1 + 0.2;
  odd.merchant = "";
  odd.retryCount = std::numeric_limits<std::int64_t>::min();
  for (const PendingSmsItem& item : {message, manualExpense(), odd}) {
    EXPECT_EQ(decode(item.encode().text()), item);
  }
}

TEST(APendingItem, ReadsANullAmountAndMerchantAsAbsent) {
  const auto document = R"({"id":"1","smsText":"t","expenseDate":"d","queuedAt":"q",)"
                        R"("retryCount":0,"source":"sms","amount":null,"merchant":null})";
  const PendingSmsItem item = decode(document);
  EXPECT_EQ(item.amount, std::nullopt);
  EXPECT_EQ(item.merchant, std::nullopt);
  EXPECT_EQ(item.encode().text(),
            R"({"id":"1","smsText":"t","expenseDate":"d","queuedAt":"q","retryCount":0,)"
            R"("source":"sms"})");
}

TEST(APendingItem, NeedsItsSixRequiredMembers) {
  for (const std::string member :
       {"id", "smsText", "expenseDate", "queuedAt", "retryCount", "source"}) {
    expectError(withMember(member, ""), Kind::keyNotFound, member);
    expectError(withMember(member, "null"), Kind::valueNotFound, member);
    expectError(withMember(member, "{}"), Kind::typeMismatch, member);
  }
}

TEST(APendingItem, NeedsEveryMemberInTheRightType) {
  for (const std::string member :
       {"id", "smsText", "expenseDate", "queuedAt", "source", "merchant"}) {
    expectError(withMember(member, "5"), Kind::typeMismatch, member);
  }
  for (const std::string member : {"retryCount", "amount"}) {
    expectError(withMember(member, "\"5\""), Kind::typeMismatch, member);
    expectError(withMember(member, "true"), Kind::typeMismatch, member);
  }
}

TEST(APendingItem, AcceptsEveryIntegerRetryCount) {
  for (const auto* const three : {"3", "3.0", "3e0"}) {
    const PendingSmsItem item = decode(withMember("retryCount", three));
    EXPECT_EQ(item.retryCount, 3);
    EXPECT_NE(item.encode().text().find(R"("retryCount":3,)"), std::string::npos);
  }
  EXPECT_EQ(decode(withMember("retryCount", "-1")).retryCount, -1);
  EXPECT_EQ(decode(withMember("retryCount", "-0")).retryCount, 0);
}

TEST(APendingItem, RefusesARetryCountWithAFractionOrOutOfRange) {
  for (const auto* const number : {"3.5", "9223372036854775808", "1e19"}) {
    expectError(withMember("retryCount", number), Kind::dataCorrupted, "retryCount");
  }
}

TEST(APendingItem, AcceptsAnIntegerAsAmount) {
  EXPECT_EQ(decode(withMember("amount", "250")).amount, 250.0);
}

TEST(APendingItem, KeepsItsTextsUnchanged) {
  for (const std::string member : {"id", "smsText", "expenseDate", "queuedAt", "source"}) {
    EXPECT_NO_THROW(decode(withMember(member, "\"\"")));
  }
  EXPECT_EQ(decode(withMember("queuedAt", "\"yesterday\"")).queuedAt, "yesterday");
  EXPECT_EQ(decode(withMember("smsText", R"("  a \n")")).smsText, "  a \n");
}

TEST(APendingItem, MatchesMemberNamesExactlyAndIgnoresOthers) {
  expectError(R"({"ID":"1","Id":"2"})", Kind::keyNotFound, "id");
  EXPECT_EQ(decode(withMember("id", R"("1","ID":5,"sms_text":[],"0":null)")).id, "1");
}

TEST(APendingItem, CannotBeWrittenWithAnAmountThatIsNotFinite) {
  for (const double amount :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    PendingSmsItem item = manualExpense();
    item.amount = amount;
    EXPECT_THROW(static_cast<void>(item.encode()), platform::NSError);
  }
}

TEST(APendingItem, IsNamedByItsIndexInAnErrorPath) {
  const std::string whole = withMember("", "");
  const auto objects =
      JSONDecoder::arrayOfObjects("[" + whole + "," + withMember("source", "") + "]");
  EXPECT_EQ(PendingSmsItem::decode(objects.at(0)).source, "sms");
  const DecodingError error =
      testkit::decodingErrorOf([&] { return PendingSmsItem::decode(objects.at(1)); });
  EXPECT_EQ(error.kind(), Kind::keyNotFound);
  EXPECT_EQ(error.path(), "[1].source");
}

}  // namespace
}  // namespace kivo
