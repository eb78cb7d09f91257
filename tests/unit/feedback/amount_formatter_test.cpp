#include "feedback/amount_formatter.h"

#include <ostream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testkit/test_phone.h"

namespace kivo {
namespace {

using testkit::ScopedVariable;

class AnAmount : public ::testing::Test {
 protected:
  std::string shown(double amount) { return AmountFormatter::format(store_, amount); }
  std::string shownIn(const std::string& currency, double amount) {
    phone_.put(StoreKeys::currency, currency);
    return shown(amount);
  }

  testkit::TestPhone phone_;
  SharedStore store_ = phone_.openStore();
};

TEST_F(AnAmount, IsInEgyptianPoundsWhenNoCurrencyIsStored) {
  EXPECT_EQ(shown(150), "EGP\u00a0150.00");
}

TEST_F(AnAmount, IsInTheStoredCurrency) { EXPECT_EQ(shownIn("USD", 12.5), "$12.50"); }

TEST_F(AnAmount, HasTheCurrencysNumberOfDecimals) {
  EXPECT_EQ(shownIn("JPY", 1234), "¥1,234");
  EXPECT_EQ(shownIn("KWD", 1.5), "KWD\u00a01.500");
}

TEST_F(AnAmount, IsWrittenWithoutItsSign) {
  EXPECT_EQ(shownIn("USD", -12.5), "$12.50");
  EXPECT_EQ(shownIn("USD", -0.0), shownIn("USD", 0.0));
}

TEST_F(AnAmount, IsNotInEgyptianPoundsWithAnEmptyCurrency) {
  EXPECT_EQ(shownIn("", 150), "¤150.00");
}

TEST_F(AnAmount, FollowsAChangeOfTheCurrencyAtOnce) {
  EXPECT_EQ(shownIn("USD", 1), "$1.00");
  EXPECT_EQ(shownIn("EUR", 1), "€1.00");
}

TEST_F(AnAmount, AcceptsAnUnknownCurrencyCode) {
  EXPECT_EQ(shownIn("XQQ", 150), "XQQ\u00a0150.00");
}

TEST_F(AnAmount, AcceptsALowerCaseCurrencyCode) { EXPECT_EQ(shownIn("usd", 1), "$1.00"); }

TEST_F(AnAmount, IsAPlainNumberWithAnInvalidCode) {
  EXPECT_EQ(shownIn("EURO", 250), "250.0");
  EXPECT_EQ(shownIn("E", 250), "250.0");
  EXPECT_EQ(shownIn(" USD", 12.5), "12.5") << "a code is not trimmed";
  EXPECT_EQ(shownIn("E€", -250), "250.0") << "the sign is dropped here too";
}

TEST_F(AnAmount, IsInEgyptianPoundsWhenTheCurrencyIsStoredAsANumber) {
  phone_.put(StoreKeys::currency, 840.0);
  EXPECT_EQ(shown(150), "EGP\u00a0150.00");
}

TEST_F(AnAmount, LeavesTheStoreUnchanged) {
  const auto before = phone_.contents();
  shown(150);
  store_.synchronize();
  EXPECT_EQ(phone_.contents(), before);
}

struct Reading {
  std::string locale;
  std::string currency;
  std::string text;
};

void PrintTo(const Reading& reading, std::ostream* out) {
  *out << reading.currency << " in " << reading.locale;
}

class InALocale : public AnAmount, public ::testing::WithParamInterface<Reading> {};

TEST_P(InALocale, AnAmountHasItsLocalFormat) {
  const ScopedVariable locale("LC_ALL", GetParam().locale);
  EXPECT_EQ(shownIn(GetParam().currency, -1234.5), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Readings, InALocale,
                         ::testing::Values(Reading{"en_US.UTF-8", "USD", "$1,234.50"},
                                           Reading{"en_GB.UTF-8", "USD", "US$1,234.50"},
                                           Reading{"de_DE.UTF-8", "EUR", "1.234,50\u00a0€"},
                                           Reading{"fr_FR.UTF-8", "EUR", "1\u202f234,50\u00a0€"},
                                           Reading{"de_CH.UTF-8", "CHF", "CHF\u00a01’234.50"},
                                           Reading{"en_IN.UTF-8", "INR", "₹1,234.50"},
                                           Reading{"C.UTF-8", "USD", "$\u00a01234.50"}),
                         [](const auto& reading) {
                           return reading.param.currency + std::to_string(reading.index);
                         });

TEST_F(AnAmount, IsWrittenInTheDigitsOfTheLocale) {
  const ScopedVariable locale("LC_ALL", "ar_EG.UTF-8");
  EXPECT_THAT(shownIn("EGP", -1234.5), ::testing::HasSubstr("١٬٢٣٤٫٥٠"));
}

TEST_F(AnAmount, PrefersLcMonetaryToLang) {
  const ScopedVariable all("LC_ALL", std::nullopt);
  const ScopedVariable monetary("LC_MONETARY", "de_DE.UTF-8");
  const ScopedVariable general("LANG", "en_US.UTF-8");
  EXPECT_EQ(shownIn("EUR", 1), "1,00\u00a0€");
}

}  // namespace
}  // namespace kivo
