#include "money/rate.h"

#include <gtest/gtest.h>

namespace kivo::money {
namespace {

std::optional<Money> converted(std::int64_t units, const CurrencyCode& from, const char* rate,
                               const CurrencyCode& to = "EGP") {
  return Rate::fromText(rate).value().convert({units, from}, to);
}

TEST(ARate, IsDigitsWithAtMostOnePoint) {
  EXPECT_EQ(Rate::fromText("48.5")->text(), "48.5");
  EXPECT_EQ(Rate::fromText("48")->text(), "48");
  EXPECT_EQ(Rate::fromText("0.00067")->text(), "0.00067");
  EXPECT_EQ(Rate::fromText("48.50")->text(), "48.50");
  EXPECT_EQ(Rate::fromText(".5")->text(), "0.5");
  EXPECT_EQ(Rate::fromText("5.")->text(), "5");
  EXPECT_EQ(Rate::fromText("123456789012345.678")->text(), "123456789012345.678");
}

TEST(ARate, IsAbsentForAnyOtherText) {
  for (const char* const text : {"",      ".",    "0",       "0.00", "-1",
                                 "+1",    " 1",   "1 ",      "1e3",  "4e1",
                                 "1e308", "0x30", "0X1p3",   "inf",  "nan",
                                 "1.2.3", "1,5",  "1,000.5", "٤٨",   "1234567890123456.789"}) {
    EXPECT_FALSE(Rate::fromText(text)) << text;
  }
}

TEST(ARate, ConvertsExactlyAndRoundsHalfUp) {
  EXPECT_EQ(converted(100, "USD", "1.005"), (Money{101, "EGP"}));
  EXPECT_EQ(converted(100, "USD", "1.00499999999999999"), (Money{100, "EGP"}));
  EXPECT_EQ(converted(1050, "USD", "48.5"), (Money{50925, "EGP"}));
  EXPECT_EQ(converted(3, "USD", "0.5"), (Money{2, "EGP"}));
  // As a double, 4503599627370497 times 1.1 is another number.
  EXPECT_EQ(converted(4503599627370497, "USD", "1.1"), (Money{4953959590107547, "EGP"}));
}

TEST(ARate, ConvertsBetweenCurrenciesWithDifferentDecimals) {
  EXPECT_EQ(converted(1250, "KWD", "490.5", "JPY"), (Money{613, "JPY"}));       // 613.125
  EXPECT_EQ(converted(1000, "JPY", "0.0020625", "KWD"), (Money{2063, "KWD"}));  // 2.0625
}

TEST(ARate, ConvertsOnlyToSumsThatAreBookable) {
  EXPECT_EQ(converted(1, "IRR", "0.499999"), std::nullopt);
  EXPECT_EQ(converted(1, "IRR", "0.5"), (Money{1, "EGP"}));
  EXPECT_EQ(converted(largestSum, "USD", "1"), (Money{largestSum, "EGP"}));
  EXPECT_EQ(converted(largestSum, "USD", "1.0000000000000001"), std::nullopt);
  EXPECT_EQ(converted(largestSum, "JPY", "999999999999999999", "KWD"), std::nullopt);
  EXPECT_EQ(converted(0, "USD", "1"), std::nullopt);
  EXPECT_EQ(converted(-1, "USD", "1"), std::nullopt);
  EXPECT_EQ(converted(INT64_MIN, "USD", "1"), std::nullopt);
  EXPECT_EQ(converted(INT64_MAX, "USD", "0.00000000000000001"), std::nullopt);
}

}  // namespace
}  // namespace kivo::money
