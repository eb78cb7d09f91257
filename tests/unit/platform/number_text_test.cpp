#include "platform/foundation/number_text.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>

#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

using namespace std::string_literals;
using Limits = std::numeric_limits<double>;

TEST(ADoubleText, IsTheShortestThatRoundTrips) {
  EXPECT_EQ(doubleText(12.5), "12.5");
  EXPECT_EQ(doubleText(0.1), "0.1");
  EXPECT_EQ(doubleText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(doubleText(175.5), "175.5");
  EXPECT_EQ(doubleText(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(doubleText(-19.99), "-19.99");
  EXPECT_EQ(doubleText(123456789.12), "123456789.12");
}

TEST(ADoubleText, HasADecimalForWholeNumbers) {
  EXPECT_EQ(doubleText(0.0), "0.0");
  EXPECT_EQ(doubleText(-0.0), "-0.0");
  EXPECT_EQ(doubleText(150), "150.0");
  EXPECT_EQ(doubleText(250), "250.0");
  EXPECT_EQ(doubleText(-3), "-3.0");
  EXPECT_EQ(doubleText(100000), "100000.0");
}

TEST(ADoubleText, HasNoExponentFromOneTenThousandthTo1e16) {
  EXPECT_EQ(doubleText(1e-4), "0.0001");
  EXPECT_EQ(doubleText(-1e-4), "-0.0001");
  EXPECT_EQ(doubleText(0.00012345678901234567), "0.00012345678901234567");
  EXPECT_EQ(doubleText(1e15), "1000000000000000.0");
  EXPECT_EQ(doubleText(9007199254740993.0), "9007199254740992.0");
  EXPECT_EQ(doubleText(std::nextafter(1e16, 0)), "9999999999999998.0");
}

TEST(ADoubleText, HasASignedExponentOfTwoDigitsBeyondThatRange) {
  EXPECT_EQ(doubleText(1e16), "1e+16");
  EXPECT_EQ(doubleText(-1e16), "-1e+16");
  EXPECT_EQ(doubleText(1.5e16), "1.5e+16");
  EXPECT_EQ(doubleText(1e100), "1e+100");
  EXPECT_EQ(doubleText(1e-5), "1e-05");
  EXPECT_EQ(doubleText(-1.25e-7), "-1.25e-07");
  EXPECT_EQ(doubleText(std::nextafter(1e-4, 0)), "9.999999999999999e-05");
  EXPECT_EQ(doubleText(Limits::max()), "1.7976931348623157e+308");
  EXPECT_EQ(doubleText(Limits::min()), "2.2250738585072014e-308");
  EXPECT_EQ(doubleText(Limits::denorm_min()), "5e-324");
}

TEST(ADoubleText, IsANameForInfinityAndNaN) {
  EXPECT_EQ(doubleText(Limits::quiet_NaN()), "nan");
  EXPECT_EQ(doubleText(-Limits::quiet_NaN()), "nan");
  EXPECT_EQ(doubleText(Limits::infinity()), "inf");
  EXPECT_EQ(doubleText(-Limits::infinity()), "-inf");
}

TEST(ADoubleText, RoundTrips) {
  std::mt19937_64 random(20260131);
  for (int i = 0; i < 100000; ++i) {
    const auto number = std::bit_cast<double>(random());
    if (std::isnan(number)) continue;
    const auto back = doubleFromText(doubleText(number));
    ASSERT_TRUE(back) << doubleText(number);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(number));
  }
  for (const double number : {0.0, -0.0, Limits::infinity(), -Limits::infinity()}) {
    const auto back = doubleFromText(doubleText(number));
    ASSERT_TRUE(back);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(number));
  }
  EXPECT_TRUE(std::isnan(doubleFromText("nan").value_or(0)));
}

TEST(ADouble, IsReadWithOrWithoutAnExponent) {
  for (const auto& [text, number] :
       {std::pair("0", 0.0), std::pair("150.0", 150.0), std::pair("150", 150.0),
        std::pair("+5", 5.0), std::pair("-5", -5.0), std::pair("1e3", 1000.0),
        std::pair("1E3", 1000.0), std::pair("1e+16", 1e16), std::pair("1e-05", 1e-5),
        std::pair(".5", 0.5), std::pair("5.", 5.0), std::pair("007", 7.0),
        std::pair("0.30000000000000004", 0.1 + 0.2), std::pair("-0.0", -0.0)}) {
    EXPECT_EQ(doubleFromText(text), number) << text;
  }
}

TEST(ADouble, IsReadFromHexadecimalAndNamesOfInfinity) {
  EXPECT_EQ(doubleFromText("0x1p4"), 16.0);
  EXPECT_EQ(doubleFromText("0X1.8"), 1.5);
  EXPECT_EQ(doubleFromText("-0xff"), -255.0);
  for (const auto* const text : {"inf", "INF", "+inf", "infinity", "Infinity"}) {
    EXPECT_EQ(doubleFromText(text), Limits::infinity()) << text;
  }
  EXPECT_EQ(doubleFromText("-inf"), -Limits::infinity());
  for (const auto* const text : {"nan", "NAN", "-nan", "nan(1)"}) {
    const auto number = doubleFromText(text);
    ASSERT_TRUE(number) << text;
    EXPECT_TRUE(std::isnan(*number)) << text;
  }
}

TEST(ADouble, IsInfiniteOrZeroOutOfRangeLikeStrtod) {
  EXPECT_EQ(doubleFromText("1e400"), Limits::infinity());
  EXPECT_EQ(doubleFromText("-1e400"), -Limits::infinity());
  EXPECT_EQ(doubleFromText("1e-400"), 0.0);
}

TEST(ADouble, IsNotReadFromATextWithBlanksOrTrailingBytes) {
  for (const auto& text : {""s, " "s, " 1"s, "\t1"s, "\n1"s, "\v1"s, "\f1"s, "\r1"s, "\0"s,
                           "\0001"s, "1 "s, "1\n"s, "1\t"s, "1\0"s, "1\0002"s,
                           "\u00A0"s
                           "1",
                           "1\u00A0"s}) {
    EXPECT_EQ(doubleFromText(text), std::nullopt) << '"' << text << '"';
  }
}

TEST(ADouble, IsNotReadFromATextThatIsNotANumber) {
  for (const auto* const text : {"abc", "-", "+", ".", "e3", "1e", "1e+", "1,5", "1.5.2", "1_000",
                                 "--1", "+-1", "0x", "1f", "١٢", "infinit", "nan(", "1.0EGP"}) {
    EXPECT_EQ(doubleFromText(text), std::nullopt) << text;
  }
}

TEST(AnIntegerText, IsDecimalDigits) {
  EXPECT_EQ(integerText(0), "0");
  EXPECT_EQ(integerText(1234567), "1234567");
  EXPECT_EQ(integerText(-5), "-5");
  EXPECT_EQ(integerText(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
  EXPECT_EQ(integerText(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(AnInteger, IsReadFromAnOptionalSignAndDigits) {
  EXPECT_EQ(integerFromText("0"), 0);
  EXPECT_EQ(integerFromText("+5"), 5);
  EXPECT_EQ(integerFromText("-5"), -5);
  EXPECT_EQ(integerFromText("-0"), 0);
  EXPECT_EQ(integerFromText("0007"), 7);
  EXPECT_EQ(integerFromText("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(integerFromText("+9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(integerFromText("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(integerFromText("000000000000000000000000000000001"), 1);
}

TEST(AnInteger, IsNotReadFromAnotherFormat) {
  for (const auto& text : {""s,
                           "+"s,
                           "-"s,
                           "+-5"s,
                           "-+5"s,
                           "++5"s,
                           "--5"s,
                           " 5"s,
                           "5 "s,
                           "\t5"s,
                           "5\n"s,
                           "5.0"s,
                           "5."s,
                           "1e3"s,
                           "abc"s,
                           "0x5"s,
                           "5\0"s,
                           "\0005"s,
                           "٥"s,
                           "1,000"s,
                           "9223372036854775808"s,
                           "-9223372036854775809"s,
                           "+9223372036854775808"s,
                           "99999999999999999999999"s}) {
    EXPECT_EQ(integerFromText(text), std::nullopt) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace kivo::platform
