#include "platform/foundation/number_formatter.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testkit/private_folders.h"

namespace kivo::platform {
namespace {

using testing::HasSubstr;
using testing::Not;
using testkit::ScopedVariable;

class ANumberFormatter : public testing::Test {
 protected:
  static std::string money(const std::string& code, double value,
                           const std::string& locale = "en_US.UTF-8") {
    const ScopedVariable variable("LC_ALL", locale);
    return NumberFormatter{.currencyCode = code}.string(value).value_or("none");
  }

 private:
  testkit::PrivateFolders folders_;
};

// A no-break space separates a code from its number.
TEST_F(ANumberFormatter, FollowsTheSymbolGroupingAndDigitsOfTheLocale) {
  EXPECT_EQ(money("EGP", 1234.5), "EGP\u00A01,234.50");
  EXPECT_EQ(money("USD", 1234.5), "$1,234.50");
  EXPECT_EQ(money("EUR", 1234.5, "de_DE.UTF-8"), "1.234,50\u00A0€");
  EXPECT_EQ(money("EGP", 1234.5, "ar_EG.UTF-8"), "\u200F١٬٢٣٤٫٥٠\u00A0ج.م.\u200F");
  EXPECT_EQ(money("IRR", 1234, "fa_IR"), "\u200Eریال\u00A0۱٬۲۳۴");
  EXPECT_EQ(money("INR", 1234567.5, "hi_IN"), "₹12,34,567.50");
  EXPECT_EQ(money("EGP", 1234.5, "C"), "EGP\u00A01234.50");
}

TEST_F(ANumberFormatter, WritesTheDecimalsOfTheCurrency) {
  EXPECT_EQ(money("JPY", 1234.5), "¥1,234");
  EXPECT_EQ(money("KWD", 1.2345), "KWD\u00A01.234");
  EXPECT_EQ(money("EGP", 250), "EGP\u00A0250.00");
  EXPECT_EQ(money("EGP", 0.1 + 0.2), "EGP\u00A00.30");
}

TEST_F(ANumberFormatter, AcceptsACodeInAnyLetterCase) {
  EXPECT_EQ(money("egp", 1), money("EGP", 1));
  EXPECT_EQ(money("uSd", 1), "$1.00");
}

TEST_F(ANumberFormatter, WritesAnUnknownCodeUnchanged) {
  EXPECT_EQ(money("QQQ", 1234.5), "QQQ\u00A01,234.50");
}

TEST_F(ANumberFormatter, WritesTheGenericCurrencySignForAnEmptyCode) {
  EXPECT_EQ(money("", 1234.5), "¤1,234.50");
  for (const auto* const locale : {"de_DE", "ar_EG", "C", "broken"}) {
    EXPECT_THAT(money("", 1, locale),
                Not(testing::AnyOf(HasSubstr("$"), HasSubstr("EGP"), "none")));
  }
}

TEST_F(ANumberFormatter, ReturnsNulloptForAnInvalidCode) {
  for (const auto* const code :
       {"E", "EG", "EGPX", "EURO", "E1P", "EG ", " EG", "123", "£", "€€€", "ЕГП", "US$", "E\nP"}) {
    EXPECT_EQ(NumberFormatter{.currencyCode = code}.string(1), std::nullopt) << code;
  }
  EXPECT_EQ(NumberFormatter{.currencyCode = std::string("E\0P", 3)}.string(1), std::nullopt);
}

TEST_F(ANumberFormatter, WritesLargeAndInfiniteAmounts) {
  EXPECT_EQ(money("EGP", 1e20), "EGP\u00A0100,000,000,000,000,000,000.00");
  EXPECT_THAT(money("EGP", std::numeric_limits<double>::infinity()), HasSubstr("∞"));
  EXPECT_THAT(money("EGP", std::numeric_limits<double>::quiet_NaN()), HasSubstr("NaN"));
}

TEST_F(ANumberFormatter, FollowsTheMonetaryLocaleOfTheDevice) {
  const ScopedVariable all("LC_ALL", std::nullopt);
  const ScopedVariable monetary("LC_MONETARY", "de_DE.UTF-8");
  const ScopedVariable numeric("LC_NUMERIC", "fa_IR.UTF-8");
  const ScopedVariable time("LC_TIME", "ar_EG.UTF-8");
  const ScopedVariable lang("LANG", "ar_EG.UTF-8");
  EXPECT_EQ(NumberFormatter{.currencyCode = "EUR"}.string(1234.5), "1.234,50\u00A0€");
}

TEST_F(ANumberFormatter, SurvivesALocaleThatDoesNotExist) {
  for (const std::string& locale :
       {std::string("broken"), std::string("xx_YY.UTF-8@nothing"), std::string("../../etc/passwd"),
        std::string(".UTF-8"), std::string("@euro"), std::string(5000, 'x')}) {
    EXPECT_THAT(money("EGP", 1234.5, locale), HasSubstr("EGP")) << locale;
  }
}

}  // namespace
}  // namespace kivo::platform
