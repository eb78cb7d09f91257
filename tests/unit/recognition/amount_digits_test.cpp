#include "recognition/amount_digits.h"

#include <gtest/gtest.h>

#include "money/money.h"

namespace kivo::recognition {

using money::largestSum;

namespace {

TEST(TheDigitsOfAnAmount, AreReadWithoutASeparator) {
  EXPECT_EQ(minorUnitsOf("150", "EGP"), 15000);
  EXPECT_EQ(minorUnitsOf("150", "JPY"), 150);
}

TEST(TheDigitsOfAnAmount, AreReadWithGroupsOfThousandsOrLakhs) {
  EXPECT_EQ(minorUnitsOf("1,234.56", "EGP"), 123456);
  EXPECT_EQ(minorUnitsOf("1.234,56", "EUR"), 123456);
  EXPECT_EQ(minorUnitsOf("1'234.50", "CHF"), 123450);
  EXPECT_EQ(minorUnitsOf("1,50,000.00", "INR"), 15000000);
  EXPECT_EQ(minorUnitsOf("1,234,567", "EGP"), 123456700);
  EXPECT_EQ(minorUnitsOf("1.234.567", "EUR"), 123456700);
}

TEST(TheDigitsOfAnAmount, AreReadWithOneSeparatorForThousandsAndDecimals) {
  EXPECT_EQ(minorUnitsOf("55.000.00", "PKR"), 5500000);
}

TEST(TheDigitsOfAnAmount, AreReadWithALeadingPoint) { EXPECT_EQ(minorUnitsOf(".93", "EUR"), 93); }

TEST(TheDigitsOfAnAmount, AreReadWithFewerOrMoreDecimalsThanTheCurrencyHas) {
  EXPECT_EQ(minorUnitsOf("34.5", "AED"), 3450);
  EXPECT_EQ(minorUnitsOf("34,5", "AED"), 3450);
  EXPECT_EQ(minorUnitsOf("12.5000", "INR"), 1250);
  EXPECT_EQ(minorUnitsOf("20000.00", "UGX"), 20000);
}

TEST(ALonePointBeforeThreeDigits, IsReadByTheConventionOfTheCurrency) {
  EXPECT_EQ(minorUnitsOf("5.000", "KWD"), 5000);    // five dinars
  EXPECT_EQ(minorUnitsOf("5.000", "IDR"), 500000);  // five thousand rupiah
  EXPECT_EQ(minorUnitsOf("5.000", "XOF"), 5000);    // five thousand francs
  EXPECT_EQ(minorUnitsOf("5.000", "INR"), 500);     // five rupees, a zero too many
  EXPECT_EQ(minorUnitsOf("5.250", "INR"), std::nullopt);
}

TEST(ALoneCommaBeforeThreeDigits, IsAThousandsSeparatorUnlessDecimalsUseCommas) {
  EXPECT_EQ(minorUnitsOf("5,000", "KWD"), 5000000);
  EXPECT_EQ(minorUnitsOf("5,000", "TND"), 5000);
  EXPECT_EQ(minorUnitsOf("0,500", "KWD"), 500);
}

TEST(TheDigitsOfAnAmount, AreRefusedWhenTheyHaveTwoReadings) {
  EXPECT_EQ(minorUnitsOf("1,0000", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1.0000", "EUR"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1.0000", "JPY"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1,000,00", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1'000'00", "CHF"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1,000'00", "CHF"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1,234'567.89", "CHF"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1.234,0000", "EUR"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1234,500", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1234.500", "EUR"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("01,500", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("01.500", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1234.500", "KWD"), 1234500);
  EXPECT_EQ(minorUnitsOf("1234,500", "EUR"), 123450);
}

TEST(TheDigitsOfAnAmount, AreRefusedWithAnythingElseAmongThem) {
  for (const char* const digits : {"1e3", "1_000", "5²", "1,234.5e2", "1 000", "-5", "+5"}) {
    EXPECT_EQ(minorUnitsOf(digits, "EGP"), std::nullopt) << digits;
  }
}

TEST(TheDigitsOfAnAmount, AreRefusedBeyondTheLargestSum) {
  EXPECT_EQ(minorUnitsOf("90,071,992,547,409.92", "EGP"), largestSum);
  EXPECT_EQ(minorUnitsOf("90,071,992,547,409.93", "EGP"), std::nullopt);
}

TEST(TheDigitsOfAnAmount, AreRefusedWhenTheyFollowNoConvention) {
  EXPECT_EQ(minorUnitsOf("1,23,45", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("10,00.00", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("500.00.2345", "INR"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("12.3456", "EGP"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("1.50", "JPY"), std::nullopt);
  EXPECT_EQ(minorUnitsOf("99999999999999999999", "EGP"), std::nullopt);
}

}  // namespace
}  // namespace kivo::recognition
