#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

// Names that hold the words and sums of bank messages. The shops and people do not exist.

namespace kivo::recognition {
namespace {

std::string readingOf(std::string_view message) {
  return readingText(read(message, "EGP"), "EGP", true);
}

TEST(AName, BehindAtMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at Discount Store on card ending 1234."),
            "expense 50.00 | Discount Store");
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at Denied Jeans on card ending 1234."),
            "expense 50.00 | Denied Jeans");
  EXPECT_EQ(readingOf("EGP 50.00 spent at Due Amici with card 1234"), "expense 50.00 | Due Amici");
  EXPECT_EQ(readingOf("EGP 50.00 spent at Limit Break Arcade. Balance EGP 9,000.00"),
            "expense 50.00 | Limit Break Arcade");
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at OTP Bank ATM on card 1234. Balance EGP 9,000"),
            "expense 50.00 | OTP Bank ATM");
}

TEST(AName, BehindFromMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("You received EGP 50.00 from Will Smith. Balance EGP 60.00"),
            "income 50.00 | Will Smith");
  EXPECT_EQ(readingOf("You received EGP 50.00 from Payment Street. Balance EGP 60.00"),
            "income 50.00 | Payment Street");
}

TEST(AName, BehindALabelMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("EGP 50.00 debited. Merchant: Refund Fashion, card 1234"),
            "expense 50.00 | Refund Fashion");
}

TEST(AName, InFrontOfSentYouMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Declined Dreams sent you EGP 75.00. Ref 1234"),
            "income 75.00 | Declined Dreams");
}

TEST(AName, BetweenQuotesMayHoldAnyWordAndSum) {
  EXPECT_EQ(readingOf("You paid EGP 5.00 to \"refund of EGP 900.00 received\" on 21-11-2026"),
            "expense 5.00 | refund of EGP 900.00 received");
}

TEST(AName, InCapitalsMayBeginWithAnyWordOfABank) {
  EXPECT_EQ(readingOf("PURCHASE OF EGP 75.00 AT DENIED JEANS ON CARD 1234"),
            "expense 75.00 | DENIED JEANS");
}

TEST(AName, InArabicMayBeginWithAnyWordOfABank) {
  EXPECT_EQ(readingOf("تم الدفع بمبلغ 75.00 جنيه لدى مرفوض ستور بتاريخ 12/11"),
            "expense 75.00 | مرفوض ستور");
}

TEST(AName, MayHoldASum) {
  EXPECT_EQ(readingOf("Spent EGP 75.00 at 5 Dollar Bakery on card 1234"),
            "expense 75.00 | 5 Dollar Bakery");
  EXPECT_EQ(readingOf("Spent EGP 75.00 at EGP 100 Shop on card 1234"),
            "expense 75.00 | EGP 100 Shop");
}

TEST(AName, MayBeginWithANumber) {
  EXPECT_EQ(readingOf("Card 1234 was used for EGP 50.00 at 7-Eleven on 12/11"),
            "expense 50.00 | 7-Eleven");
  EXPECT_EQ(readingOf("Card 1234 was used for EGP 50.00 at 19011 Pharmacies on 12/11"),
            "expense 50.00 | 19011 Pharmacies");
}

TEST(AName, EndsBeforeALabelWithItsNumber) {
  EXPECT_EQ(readingOf("Card 1234: EGP 50.00 spent at Fern Cafe Available Balance EGP 10.00"),
            "expense 50.00 | Fern Cafe");
  EXPECT_EQ(readingOf("EGP 50.00 spent at Fern Cafe Card ending 1234"),
            "expense 50.00 | Fern Cafe");
  EXPECT_EQ(readingOf("Merchant: Fern Cafe Amount: EGP 50.00 Card: 1234 purchase"),
            "expense 50.00 | Fern Cafe");
}

TEST(AName, WithAnOutcomeAtItsEndIsForReview) {
  EXPECT_EQ(readingOf("Txn of EGP 75.00 at Access Denied. Balance EGP 100.00"),
            "review 75.00 | Access Denied");
  EXPECT_EQ(readingOf("Txn of EGP 75.00 at Access Denied on card 1234"),
            "expense 75.00 | Access Denied");
  EXPECT_EQ(readingOf("Txn of EGP 75.00 at Fern Cafe Successful. Balance EGP 100.00"),
            "expense 75.00 | Fern Cafe");
}

TEST(ASum, WhereANameIsExpectedIsForReview) {
  EXPECT_EQ(readingOf("Transfer from EGP 9000.00. Fee: EGP 1.00 credited to your account 12 Amount "
                      "EGP 5.00")
                .substr(0, 6),
            "review");
}

TEST(ASumInFrontOfAName, IsTheSumBehindAVerb) {
  EXPECT_EQ(readingText(read("Pagamento de R$ 45,00 LUZ AZUL 21/11/26", "BRL"), "BRL", true),
            "expense 45.00 | LUZ AZUL");
}

}  // namespace
}  // namespace kivo::recognition
