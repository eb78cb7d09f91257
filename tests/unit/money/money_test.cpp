#include "money/money.h"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace kivo::money {
namespace {

TEST(AnAmountText, HasTheDecimalsOfItsCurrency) {
  EXPECT_EQ(amountText({15000, "EGP"}), "150.00");
  EXPECT_EQ(amountText({4250, "KWD"}), "4.250");
  EXPECT_EQ(amountText({150, "JPY"}), "150");
  EXPECT_EQ(amountText({5, "EGP"}), "0.05");
  EXPECT_EQ(amountText({-5, "EGP"}), "-0.05");
  EXPECT_EQ(amountText({0, "EGP"}), "0.00");
}

TEST(AnAmountText, CoversTheSmallestAndTheLargestAmount) {
  EXPECT_EQ(amountText({std::numeric_limits<std::int64_t>::min(), "EGP"}), "-92233720368547758.08");
  EXPECT_EQ(amountText({std::numeric_limits<std::int64_t>::max(), "EGP"}), "92233720368547758.07");
}

TEST(ACurrencyCode, IsThreeLettersOfEitherCase) {
  EXPECT_EQ(CurrencyCode::fromText("egp"), CurrencyCode("EGP"));
  EXPECT_EQ(CurrencyCode::fromText("Usd")->text(), "USD");
  for (const char* text : {"", "E", "EG", "EURO", "E£", "E1P", "ж", "E P", "[AB", "@AB", "{ab"}) {
    EXPECT_FALSE(CurrencyCode::fromText(text)) << text;
  }
}

TEST(ACurrencyCode, IsThatOfNoCurrencyUntilItIsKnown) { EXPECT_EQ(CurrencyCode().text(), "XXX"); }

TEST(AnAmountText, IsParsedIntoMinorUnits) {
  EXPECT_EQ(moneyFromText("150", "EGP"), (Money{15000, "EGP"}));
  EXPECT_EQ(moneyFromText("150.5", "EGP"), (Money{15050, "EGP"}));
  EXPECT_EQ(moneyFromText("-0.05", "EGP"), (Money{-5, "EGP"}));
  EXPECT_EQ(moneyFromText("4.250", "KWD"), (Money{4250, "KWD"}));
  EXPECT_EQ(moneyFromText("90071992547409.92", "EGP"), (Money{largestSum, "EGP"}));
  EXPECT_EQ(moneyFromText("-90071992547409.92", "EGP"), (Money{-largestSum, "EGP"}));
}

TEST(AnAmountText, IsRefusedWhenItIsNoAmountOfItsCurrency) {
  for (const char* const text : {"", "-", ".5", "5.", "1,5", "1e3", " 1", "+1", "0x1", "nan",
                                 "1.2.3", "1.005", "90071992547409.93", "-90071992547409.93",
                                 "-92233720368547758.08", "99999999999999999999"}) {
    EXPECT_EQ(moneyFromText(text, "EGP"), std::nullopt) << text;
  }
  EXPECT_EQ(moneyFromText("1.5", "JPY"), std::nullopt);
}

TEST(TheNearestSums, AreTheDecimalItselfWhereTheCurrencyHasItsDecimals) {
  for (const char* text : {"1189.50", "1,189.50", "1189.5", "1189.500"}) {
    const auto sums = nearestSums(text, "EGP");
    ASSERT_TRUE(sums) << text;
    EXPECT_EQ(sums->atMost, (Money{118950, "EGP"})) << text;
    EXPECT_EQ(sums->atLeast, (Money{118950, "EGP"})) << text;
  }
  EXPECT_EQ(nearestSums("1189.000", "JPY")->atLeast, (Money{1189, "JPY"}));
  EXPECT_EQ(nearestSums("1189", "KWD")->atMost, (Money{1189000, "KWD"}));
}

TEST(TheNearestSums, EncloseADecimalThatTheCurrencyDoesNotHave) {
  EXPECT_EQ(nearestSums("10.5", "JPY")->atMost, (Money{10, "JPY"}));
  EXPECT_EQ(nearestSums("10.5", "JPY")->atLeast, (Money{11, "JPY"}));
  EXPECT_EQ(nearestSums("0.001", "EGP")->atMost, (Money{0, "EGP"}));
  EXPECT_EQ(nearestSums("0.001", "EGP")->atLeast, (Money{1, "EGP"}));
}

TEST(TheNearestSums, AreAbsentForATextThatIsNoDecimal) {
  for (const char* text :
       {"", ".", "5.", "-5", "1e3", "1.2.3", "1,18.50", "EGP 5", "5.0x", "90071992547409.93"}) {
    EXPECT_FALSE(nearestSums(text, "EGP")) << text;
  }
}

TEST(AnAmountText, MayHaveCommasBetweenThousands) {
  EXPECT_EQ(moneyFromText("1,189.50", "EGP"), (Money{118950, "EGP"}));
  EXPECT_EQ(moneyFromText("12,345,678", "EGP"), (Money{1234567800, "EGP"}));
  EXPECT_EQ(moneyFromText("123,456.7", "EGP"), (Money{12345670, "EGP"}));
}

TEST(AnAmountText, IsRefusedWithACommaElsewhere) {
  for (const char* const text :
       {"1,18.50", "1189,50", "1,1895", "1,189,50", "1234,567", "1,234567", ",189", "189,", "0,189",
        "1,,189", "1.189,50", "1,189.5,0", "12,34,567", "1'189", "1 189"}) {
    EXPECT_EQ(moneyFromText(text, "EGP"), std::nullopt) << text;
  }
}

TEST(ASumOfMoney, IsBookableAboveZeroUpToTheLargestSum) {
  EXPECT_TRUE(isBookable({1, "EGP"}));
  EXPECT_TRUE(isBookable({9007199254740992, "EGP"}));
  EXPECT_FALSE(isBookable({0, "EGP"}));
  EXPECT_FALSE(isBookable({-1, "EGP"}));
  EXPECT_FALSE(isBookable({9007199254740993, "EGP"}));
}

TEST(ACurrency, IsKnownByItsCode) {
  EXPECT_EQ(currencyFromText("AED"), CurrencyCode("AED"));
  EXPECT_EQ(currencyFromText("zmw"), CurrencyCode("ZMW"));
  EXPECT_FALSE(currencyFromText("ABC"));
  EXPECT_FALSE(currencyFromText("XXX"));
  EXPECT_FALSE(currencyFromText(""));
}

TEST(ASumOfMoney, AddsItsOwnCurrency) {
  Money sum{15000, "EGP"};
  sum += {5, "EGP"};
  EXPECT_EQ(sum, (Money{15005, "EGP"}));
  EXPECT_DEATH((sum += {5, "USD"}), "");
}

TEST(ASumOfMoney, SaysWhenTheResultDoesNotFit) {
  Money sum{std::numeric_limits<std::int64_t>::max() - 1, "EGP"};
  sum += {1, "EGP"};
  EXPECT_THROW((sum += {1, "EGP"}), std::overflow_error);
}

}  // namespace
}  // namespace kivo::money
