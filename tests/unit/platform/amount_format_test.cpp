#include "platform/linux/locale/amount_format.h"

#include <gtest/gtest.h>

#include "testkit/private_folders.h"

namespace kivo::linux_platform {
namespace {

using Currency = AmountFormat::Currency;
using testkit::ScopedVariable;

std::string shown(const std::string& plain, const std::string& code, int decimals,
                  const std::string& locale, Currency currency) {
  const ScopedVariable variable("LC_ALL", locale);
  return AmountFormat(code, decimals, currency).text(plain);
}

TEST(AnAmountFormat, GroupsAsTheLocaleDoes) {
  EXPECT_EQ(shown("1250.50", "EGP", 2, "en_US.UTF-8", Currency::hidden), "1,250.50");
  EXPECT_EQ(shown("1250.50", "EUR", 2, "de_DE.UTF-8", Currency::hidden), "1.250,50");
  EXPECT_EQ(shown("1250.50", "EGP", 2, "ar_EG.UTF-8", Currency::hidden), "١٬٢٥٠٫٥٠");
  EXPECT_EQ(shown("12345678.90", "INR", 2, "en_IN.UTF-8", Currency::hidden), "1,23,45,678.90");
  EXPECT_EQ(shown("1250.50", "EGP", 2, "C", Currency::hidden), "1250.50");
}

TEST(AnAmountFormat, ShowsTheCurrencyAsTheLocaleDoes) {
  EXPECT_EQ(shown("1250.50", "EGP", 2, "en_US.UTF-8", Currency::shown), "EGP\u00a01,250.50");
  EXPECT_EQ(shown("1250.50", "EUR", 2, "de_DE.UTF-8", Currency::shown), "1.250,50\u00a0€");
}

TEST(AnAmountFormat, KeepsEachDigitOfTheLargestSum) {
  EXPECT_EQ(shown("92233720368547758.07", "EGP", 2, "en_US.UTF-8", Currency::hidden),
            "92,233,720,368,547,758.07");
  EXPECT_EQ(shown("-92233720368547758.08", "USD", 2, "en_US.UTF-8", Currency::shown),
            "-$92,233,720,368,547,758.08");
}

TEST(AnAmountFormat, ShowsDecimalsThatTheLocaleWouldHide) {
  EXPECT_EQ(shown("1250.005", "IQD", 3, "en_US.UTF-8", Currency::shown), "IQD\u00a01,250.005");
  EXPECT_EQ(shown("1250.00", "LBP", 2, "en_US.UTF-8", Currency::hidden), "1,250.00");
  EXPECT_EQ(shown("1250", "JPY", 0, "en_US.UTF-8", Currency::shown), "¥1,250");
}

TEST(AnAmountFormat, ShowsAnUnknownCurrencyAsThePlainNumber) {
  for (const char* const code : {"", "E", "EURO", "QQQ", "\xff\xff\xff"}) {
    EXPECT_EQ(shown("1250.00", code, 2, "en_US.UTF-8", Currency::shown), "1,250.00") << code;
  }
}

}  // namespace
}  // namespace kivo::linux_platform
