#include <string>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

// Which messages report a movement of money. The banks, merchants and people do not exist.

namespace kivo::recognition {
namespace {

std::string of(std::string_view message, const money::CurrencyCode& book = "EGP") {
  return readingText(read(message, book), book, true);
}

TEST(AnOffer, MovesNothingWithoutAnAccountADateABalanceOrAReference) {
  EXPECT_EQ(of("EGP 500 cashback credited with every purchase! T&C apply."), "none");
  EXPECT_EQ(of("EGP 500 cashback credited to account 4821 on 21-11-2026. T&C apply."),
            "income 500.00 | -");
}

TEST(AWarningAboutCodes, LeavesAPaymentUnlessItTellsACode) {
  EXPECT_EQ(of("You paid EGP 50.00 to Tulip Store. Never share your OTP with anyone. 19011 is our "
               "hotline"),
            "expense 50.00 | Tulip Store");
  EXPECT_EQ(of("You paid EGP 50.00 to Tulip Store. Never share your OTP 1901"), "none");
  EXPECT_EQ(of("You paid EGP 50.00 to Tulip Store. Never share your OTP, it has 190 digits"),
            "expense 50.00 | Tulip Store");
}

TEST(AnOffer, LeavesAPaymentInAnotherSentence) {
  EXPECT_EQ(of("You paid EGP 50.00 to Tulip Store. Enjoy 10% off next time!"),
            "expense 50.00 | Tulip Store");
}

TEST(ARequestToTheReader, ReportsNothing) {
  EXPECT_EQ(of("Dear Omar, pay your purchase of EGP 300.00 with card 4821."), "none");
  EXPECT_EQ(of("Sunny Pay: purchase of EGP 300.00 at Tulip Store"), "expense 300.00 | Tulip Store");
}

TEST(AStandingArrangement, CountsOnceItWasCarriedOut) {
  EXPECT_EQ(of("Your scheduled transfer of EGP 20.00 from card 4821 to Mona Samir"), "none");
  EXPECT_EQ(of("Your scheduled transfer of EGP 20.00 from card 4821 to Mona Samir was completed"),
            "expense 20.00 | Mona Samir");
  EXPECT_EQ(of("EGP 20.00 will be debited from card 4821 for StreamNest autopay"), "none");
}

TEST(ANounAlone, IsForReviewWithoutAPayeeAndEvidence) {
  EXPECT_EQ(of("Payment EGP 20.00"), "review 20.00 | -");
  EXPECT_EQ(of("Payment EGP 20.00 card 4821"), "expense 20.00 | -");
  EXPECT_EQ(of("Payment EGP 20.00 to Tulip Store"), "expense 20.00 | Tulip Store");
}

TEST(ASumWithoutAWording, TakesItsDirectionFromItsSignOrAName) {
  EXPECT_EQ(of("Acc 4821: +20.00 EGP, balance 900.00 EGP"), "income 20.00 | -");
  EXPECT_EQ(of("EGP 20.00 at Fern Cafe. Balance EGP 900.00"), "expense 20.00 | Fern Cafe");
  EXPECT_EQ(of("EGP 20.00 to Mona Samir on 21-11-2026"), "expense 20.00 | Mona Samir");
  EXPECT_EQ(of("EGP 20.00 from Mona Samir, account 4821"), "income 20.00 | Mona Samir");
}

TEST(ASumWithoutAWording, IsForReviewBesideABalance) {
  EXPECT_EQ(of("Wibble EGP 20.00, balance EGP 900.00"), "review 20.00 | -");
  EXPECT_EQ(of("Wibble EGP 20.00"), "none");
}

TEST(ALaterSentence, AddsNoSumWhenItSaysNothingOfAMovement) {
  EXPECT_EQ(of("You paid EGP 20.00 to Tulip Store. You now own EGP 480.00."),
            "expense 20.00 | Tulip Store");
}

TEST(ALoneName, IsFoundByItsCapitals) {
  EXPECT_EQ(of("Card payment EGP 48.13, TIMBERLINE CO-OP, card 0031, 21-11-2026"),
            "expense 48.13 | TIMBERLINE CO-OP");
  EXPECT_EQ(of("EGP 48.13 spent card *2280 SUN MARKET 21-11-2026 14:33. Nilo Bank"),
            "expense 48.13 | SUN MARKET");
}

TEST(ALoneName, IsTheOneInCapitals) {
  EXPECT_EQ(of("EGP 48.13 spent, Nilo Corner, SUN MARKET, card 2280"),
            "expense 48.13 | SUN MARKET");
  EXPECT_EQ(of("EGP 48.13 spent, Nilo Corner, Sun Market, card 2280"),
            "expense 48.13 | Nilo Corner");
  EXPECT_EQ(of("EGP 48.13 spent, SUN, Nilo Corner, card 2280"), "expense 48.13 | Nilo Corner");
}

TEST(ALoneName, IsNotTheBanksSignature) {
  EXPECT_EQ(of("EGP 48.13 spent on card 2280. Nilo Bank"), "expense 48.13 | -");
}

TEST(AnIdeograph, IsAWord) {
  EXPECT_EQ(of("尾號1190信用卡於美味茶餐廳簽賬港幣62.50元", "HKD"), "expense 62.50 | 美味茶餐廳");
}

}  // namespace
}  // namespace kivo::recognition
