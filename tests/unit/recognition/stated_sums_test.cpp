#include "recognition/stated_sums.h"

#include <array>
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "recognition/reading.h"
#include "recognition/spelling.h"
#include "unit/recognition/reading_text.h"

namespace kivo::recognition {

using money::Money;

namespace {

std::string of(std::string_view message, const money::CurrencyCode& book) {
  return readingText(read(message, book), book, false);
}

// The sums of `text` with signs, minor units and currencies, such as "-2000 EGP, ? USD".
std::string sumsIn(std::string_view text, std::string_view book) {
  std::string sums;
  for (const Item& item : withSums(itemsOf(readableForm(text)), book)) {
    if (item.kind != Item::Kind::sum) continue;
    if (!sums.empty()) sums += ", ";
    if (item.sum.sign != '\0') sums += item.sum.sign;
    sums += item.sum.minorUnits ? std::to_string(*item.sum.minorUnits) : "?";
    if (!item.sum.currency.empty()) sums += " " + item.sum.currency;
  }
  return sums;
}

TEST(ASum, MayBeGluedToAnArabicOrChineseWord) {
  EXPECT_EQ(sumsIn("余额1138.00", "CNY"), "113800");
  EXPECT_EQ(sumsIn("尾号1138", "CNY"), "");
  EXPECT_EQ(sumsIn("برداشت620,000\nمانده1,480,000", "IRR"), "62000000, 148000000");
  EXPECT_EQ(sumsIn("XX620,000", "IRR"), "");
}

TEST(ASum, MayHaveABlankBehindTheLetterOfItsCurrency) {
  EXPECT_EQ(sumsIn("EFT to Mrs Naidoo Rent R 6 500,00 done", "ZAR"), "650000 ZAR");
  EXPECT_EQ(sumsIn("Card used by John R 12", "ZAR"), "");
}

TEST(ASum, IsUnclearBehindANumberThatMayBeItsFront) {
  EXPECT_EQ(sumsIn("Rent 6 500,00 done", "ZAR"), "?");
}

TEST(ASum, IsNoDigitWithinAWord) {
  EXPECT_EQ(sumsIn("Taka2Go: sent you Tk 40.00", "BDT"), "4000 BDT");
}

TEST(ASum, IsOfItsOwnCurrencyBehindTheWordQR) {
  EXPECT_EQ(sumsIn("จ่าย QR 75.00 บาท", "THB"), "7500 THB");
  EXPECT_EQ(sumsIn("Paid QR 75.00", "THB"), "7500 QAR");
}

TEST(ASum, IsTheMovedOneInFrontOfAnAbbreviatedBalance) {
  EXPECT_EQ(of("Купівля 500 грн 10:44 Бал. 700 грн", "UAH"), "expense 500.00");
}

TEST(ASum, MayHaveASignBehindItInIran) {
  EXPECT_EQ(sumsIn("انتقال:750,000+\nمانده:6,100,000-", "IRR"), "+75000000, -610000000");
  EXPECT_EQ(sumsIn("750,000-12", "IRR"), "");
}

TEST(ASum, HasNoCurrencyThatIsAnArticleOrTheEndOfAWord) {
  EXPECT_EQ(sumsIn("45,00 EUR carte 0912 le 01/04/26", "EUR"), "4500 EUR");
  EXPECT_EQ(sumsIn("LE 50", "AED"), "5000 EGP");
  EXPECT_EQ(sumsIn("TK 0912: -150,000 VND", "VND"), "-150000 VND");
  EXPECT_EQ(sumsIn("เก็บ 500", "THB"), "");
}

TEST(ASum, IsNotTheNumberOfAnAccount) {
  EXPECT_EQ(sumsIn("حساب 44.120\n-350,000", "IRR"), "-35000000");
}

TEST(ASum, MayHaveASignInFrontOfItsNumberOrCurrency) {
  EXPECT_EQ(sumsIn("+20.00 EGP", "EGP"), "+2000 EGP");
  EXPECT_EQ(sumsIn("EGP -20.00", "EGP"), "-2000 EGP");
  EXPECT_EQ(sumsIn("EGP - 20", "EGP"), "-2000 EGP");
  EXPECT_EQ(sumsIn("-EGP 20.00", "EGP"), "-2000 EGP");
  EXPECT_EQ(sumsIn("-20.00", "EGP"), "-2000");
  EXPECT_EQ(sumsIn("- EGP 20.00", "EGP"), "2000 EGP");
  EXPECT_EQ(sumsIn("- 20.00 EGP", "EGP"), "-2000 EGP");
  EXPECT_EQ(sumsIn("(20.00 EGP", "EGP"), "2000 EGP");
}

TEST(ASum, MayHaveThreeMarksBehindItsCurrency) {
  EXPECT_EQ(sumsIn("EGP :=: 20", "EGP"), "2000 EGP");
  EXPECT_EQ(sumsIn("EGP :=:= 20", "EGP"), "");
  EXPECT_EQ(sumsIn("EGP, 20", "EGP"), "");
}

TEST(ASum, MayNameItsCurrencyTwice) {
  EXPECT_EQ(sumsIn("INR Rs.500", "PKR"), "50000 INR");
  EXPECT_EQ(sumsIn("Rs. INR 500", "PKR"), "50000 INR");
  EXPECT_EQ(sumsIn("USD EGP 5", "EGP"), "500 EGP");
  EXPECT_EQ(sumsIn("EGP 500 MXN", "EGP"), "50000 EGP");
}

TEST(ACurrencyBetweenTwoNumbers, BelongsToOneOfThem) {
  EXPECT_EQ(sumsIn("4821 EGP 50", "EGP"), "5000 EGP");
  EXPECT_EQ(sumsIn("48.21 EGP 50.00", "EGP"), "4821, 5000 EGP");
  EXPECT_EQ(sumsIn("48.21 EGP 50", "EGP"), "4821 EGP");
  EXPECT_EQ(sumsIn("48.21 EGP: 50.00", "EGP"), "4821, 5000 EGP");
  EXPECT_EQ(sumsIn("500EGP 20.00", "EGP"), "50000 EGP, 2000");
  EXPECT_EQ(sumsIn("500 USD 20 USD", "EGP"), "50000 USD, 2000 USD");
  EXPECT_EQ(sumsIn("500 EGP 20.00 EGP", "EGP"), "50000 EGP, 2000 EGP");
  EXPECT_EQ(sumsIn("500 EGP 21-11-2026", "EGP"), "50000 EGP");
}

TEST(ANumberWithoutACurrency, IsASumByItsDecimalsOrAWordForAnAmount) {
  EXPECT_EQ(sumsIn("50,00", "EGP"), "5000");
  EXPECT_EQ(sumsIn("amount 50", "EGP"), "5000");
  EXPECT_EQ(sumsIn("amount: 50", "EGP"), "5000");
  EXPECT_EQ(sumsIn("debited by 50", "EGP"), "5000");
  EXPECT_EQ(sumsIn("credited by 50", "EGP"), "5000");
  EXPECT_EQ(sumsIn("debited 50", "EGP"), "");
  EXPECT_EQ(sumsIn("by 50", "EGP"), "");
  EXPECT_EQ(sumsIn("50", "EGP"), "");
}

TEST(ANumberInAWord, IsASumOnlyWithAGluedCurrency) {
  EXPECT_EQ(sumsIn("xx500EGP", "EGP"), "50000 EGP");
  EXPECT_EQ(sumsIn("xx500 EGP", "EGP"), "");
  EXPECT_EQ(sumsIn("EGP x500", "EGP"), "");
}

TEST(AMaskBehindANumber, MakesItAnAccount) {
  EXPECT_EQ(sumsIn("TK 0221xxx", "BDT"), "");
  EXPECT_EQ(sumsIn("TK 0221*", "BDT"), "");
  EXPECT_EQ(sumsIn("TK 0221 xxx", "BDT"), "22100 BDT");
  EXPECT_EQ(sumsIn("TK 0221 *7", "BDT"), "22100 BDT");
}

TEST(ADateInAMessage, IsNoSumBehindACurrency) {
  EXPECT_EQ(sumsIn("EGP 2026-11-21", "EGP"), "");
  EXPECT_EQ(sumsIn("EGP 12:30", "EGP"), "");
}

TEST(ALetterBehindAnAmount, MultipliesItWhenGlued) {
  EXPECT_EQ(sumsIn("EGP 5m, EGP 5b, EGP 5l, EGP 5 m", "EGP"), "? EGP, ? EGP, ? EGP, 500 EGP");
}

TEST(GroupsBehindBlanks, AreOneAmount) {
  EXPECT_EQ(sumsIn("1 234 EUR", "EUR"), "123400 EUR");
  EXPECT_EQ(sumsIn("EUR 1 234 567,89", "EUR"), "123456789 EUR");
  EXPECT_EQ(sumsIn("EUR 1   234", "EUR"), "123400 EUR");
  EXPECT_EQ(sumsIn("EUR 1    234", "EUR"), "100 EUR");
  EXPECT_EQ(sumsIn("1234 567 EUR", "EUR"), "56700 EUR");
  EXPECT_EQ(sumsIn("1 2345 EUR", "EUR"), "234500 EUR");
  EXPECT_EQ(sumsIn("1 234,50 EGP", "EGP"), "123450 EGP");
  EXPECT_EQ(sumsIn("1 234.50 EGP", "EGP"), "? EGP");
}

TEST(AStatedCurrency, MayBeJoinedToItsAmount) {
  EXPECT_EQ(of("Paid SAR150 to Oasis", "SAR"), "expense 150.00");
  EXPECT_EQ(of("Paid 150SAR to Oasis", "SAR"), "expense 150.00");
  EXPECT_EQ(of("شراء بـSAR 150 لدى متجر الورد", "SAR"), "expense 150.00");
  EXPECT_EQ(of("N150.00 debited", "NGN"), "expense 150.00");
}

TEST(AStatedCurrency, MayBeWrittenTwice) {
  EXPECT_EQ(of("INR Rs.15000.00 credited", "INR"), "income 15000.00");
  EXPECT_EQ(of("$500.00 MXN debited", "USD"), "review MXN 500.00");
}

TEST(AnAmbiguousSign, IsReadAsTheBooksCurrencyWhenThatUsesIt) {
  EXPECT_EQ(of("You spent $12.99 at Maple", "CAD"), "expense 12.99");
  EXPECT_EQ(of("You spent $12.99 at Maple", "EGP"), "review USD 12.99");
  EXPECT_EQ(of("Rs.100 debited from a/c 12", "PKR"), "expense 100.00");
  EXPECT_EQ(of("Rs.100 debited from a/c 12", "AED"), "review INR 100.00");
  EXPECT_EQ(of("You spent £7.20 at Kettle", "EGP"), "review GBP 7.20");
}

TEST(AnArticle, IsNotPartOfADollarSign) {
  EXPECT_EQ(of("You made a $18.20 purchase at Maple", "USD"), "expense 18.20");
}

TEST(AReference, IsNoAmountEvenWhenItsLettersAreACurrency) {
  EXPECT_EQ(of("AED 500.00 transferred to Salem Ali. Transfer reference FT2610", "AED"),
            "expense 500.00");
}

TEST(AnAccountNumber, IsNoAmount) {
  EXPECT_EQ(of("TK 0221xxx: 250,000VND debited", "VND"), "expense 250000");
  EXPECT_EQ(of("Card 4821 EGP 50.00 purchase at Metro", "EGP"), "expense 50.00");
  EXPECT_EQ(of("A/c 1***2222 debited with ETB 25.00", "ETB"), "expense 25.00");
}

TEST(ADateInAMessage, IsNoAmountAndEndsTheOneBeforeIt) {
  EXPECT_EQ(of("Rs.5000.00,21-11-2026 debited from A/c XX12", "INR"), "expense 5000.00");
  EXPECT_EQ(of("Achat de 42,00 € chez Lune le 12/10", "EUR"), "expense 42.00");
}

TEST(BlanksBetweenDigits, GroupThousandsWhereThatIsTheConvention) {
  EXPECT_EQ(of("R1 234.50 paid", "ZAR"), "expense 1234.50");
  EXPECT_EQ(of("Achat de 1 234,56 EUR chez Lune", "EUR"), "expense 1234.56");
}

TEST(BlanksBetweenDigits, RequireAReviewElsewhere) {
  EXPECT_EQ(of("Rs 1 234.00 debited", "INR"), "review ?");
  EXPECT_EQ(of("You paid 1 234 USD at Maple", "USD"), "review ?");
}

TEST(AnAmountThatCanBeReadInTwoWays, RequiresAReview) {
  EXPECT_EQ(of("Rs 5.250 debited from a/c 12", "INR"), "review ?");
  EXPECT_EQ(of("Rs 5 lakh debited from a/c 12", "INR"), "review ?");
  EXPECT_EQ(of("99999999999999999999 EGP debited", "EGP"), "review ?");
}

// Each form of a number in front of its currency, behind it, and joined to it.
TEST(ANumberThatCanBeReadInTwoWays, RequiresAReview) {
  for (const std::string number : {"1e3",
                                   "1E3",
                                   "1e308",
                                   "1.5e3",
                                   "1e+3",
                                   "1e-3",
                                   "1_000",
                                   "1,0000",
                                   "1,000,00",
                                   "500 00",
                                   "5²",
                                   "5¹⁰",
                                   "5½",
                                   "5⅓",
                                   "1·000",
                                   "1´000",
                                   "5×10",
                                   "2^10",
                                   "1,,000",
                                   "1, 000",
                                   "1-000",
                                   "500-1000",
                                   "1/000",
                                   "500:1000",
                                   "1 234",
                                   "1234,500",
                                   "01,500",
                                   "5万",
                                   "90071992547409.93",
                                   "92233720368547758.07",
                                   "99999999999999999999"}) {
    for (const std::string& sum : {"EGP " + number, number + " EGP", number + "EGP"}) {
      const std::string message = "Your card was charged " + sum + " at Netflix.";
      EXPECT_EQ(of(message, "EGP"), "review ?") << message;
    }
  }
}

TEST(AMultipliedNumber, RequiresAReview) {
  EXPECT_EQ(of("Your card was charged EGP 5 million at Netflix.", "EGP"), "review ?");
  EXPECT_EQ(of("Your card was charged 5 million EGP at Netflix.", "EGP"), "review ?");
  EXPECT_EQ(of("Your card was charged EGP 5M at Netflix.", "EGP"), "review ?");
}

TEST(ANumberOfAnOrdinaryForm, IsNoReview) {
  const auto booked = [](const std::string& sum, const money::CurrencyCode& book) {
    return of("Your card was charged " + sum + " at Netflix.", book);
  };
  EXPECT_EQ(booked("EGP 1,234.50", "EGP"), "expense 1234.50");
  EXPECT_EQ(booked("1.234,50 EUR", "EUR"), "expense 1234.50");
  EXPECT_EQ(booked("1 234,50 EUR", "EUR"), "expense 1234.50");
  EXPECT_EQ(booked("INR 12,34,567.00", "INR"), "expense 1234567.00");
  EXPECT_EQ(booked("EGP ١٬٢٣٤٫٥٠", "EGP"), "expense 1234.50");
  EXPECT_EQ(booked("CHF 1'234.50", "CHF"), "expense 1234.50");
  EXPECT_EQ(booked("CHF 1’234.50", "CHF"), "expense 1234.50");
  EXPECT_EQ(booked("EGP 500", "EGP"), "expense 500.00");
  EXPECT_EQ(booked("Rs.500/-", "INR"), "expense 500.00");
  EXPECT_EQ(booked("EGP 90,071,992,547,409.92", "EGP"), "expense 90071992547409.92");
}

TEST(ANumberBesideOtherNumbers, IsNoReview) {
  EXPECT_EQ(of("EGP 500 12/05/2026 14:32 charged at Netflix", "EGP"), "expense 500.00");
  EXPECT_EQ(of("EGP 500 21 Nov 2026 charged at Netflix", "EGP"), "expense 500.00");
  EXPECT_EQ(of("Card 4821 500 EGP charged at Netflix", "EGP"), "expense 500.00");
  EXPECT_EQ(of("EGP 500.00 12 Oct charged at Netflix, ref 4821_77", "EGP"), "expense 500.00");
  EXPECT_EQ(of("EGP 500 charged at 7-Eleven", "EGP"), "expense 500.00");
}

// The whole number that the digits of `written` make, without their separators.
std::uint64_t digitsOf(std::string_view written) {
  std::uint64_t digits = 0;
  for (const char character : written) {
    if (character >= '0' && character <= '9') {
      digits = digits * 10 + static_cast<std::uint64_t>(character - '0');
    }
  }
  return digits;
}

// Whether `units` is all digits of `written`, with none or up to three of them behind its last
// separator, which is a point or a comma.
bool isWhole(std::int64_t units, std::string_view written) {
  constexpr std::uint64_t hundredths = 100;
  const std::uint64_t all = digitsOf(written) * hundredths;
  const std::size_t last = written.find_last_not_of("0123456789");
  const auto booked = static_cast<std::uint64_t>(units);
  if (booked == all) return true;
  if (last == std::string_view::npos || (written[last] != '.' && written[last] != ','))
    return false;
  const std::size_t decimals = written.size() - last - 1;
  std::uint64_t power = 1;
  for (std::size_t count = 0; count < decimals; ++count) power *= 10;
  return booked * power == all && (decimals <= 3 || written[last] == '.');
}

TEST(ABookedSum, IsAllThatIsWrittenBesideItsCurrency) {
  constexpr auto parts =
      std::to_array<std::string_view>({"0", "1", "5", "00", "50", "000", "234", "0000", "1", "7"});
  constexpr auto joins = std::to_array<std::string_view>(
      {".", ",", "'", "_", "e", "E", ",,", ".,", "²", "·", "½", "", ".", ","});
  constexpr auto groups = std::to_array<std::string_view>({"1", "50", "00", "000", "234"});
  constexpr auto blank = std::to_array<std::string_view>({" "});
  std::mt19937 random(20261121);  // the same numbers in each run
  const auto any = [&random](const auto& of) { return std::string(of[random() % of.size()]); };
  const auto number = [&](const auto& pieces, const auto& between) {
    std::string text = any(pieces);
    for (auto more = random() % 4; more > 0; --more) text += any(between) + any(pieces);
    return text;
  };
  int booked = 0;
  for (int count = 0; count < 4000; ++count) {
    const std::string written = count % 4 == 0 ? number(groups, blank) : number(parts, joins);
    const std::string sum = random() % 2 == 0 ? "EGP " + written : written + " EGP";
    const Reading reading = read("Your card was charged " + sum + " at Netflix.", "EGP");
    if (reading.outcome != Outcome::transaction) continue;
    ++booked;
    EXPECT_TRUE(isWhole(reading.amount->minorUnits, written))
        << sum << " is booked as " << amountText(*reading.amount);
  }
  EXPECT_GT(booked, 400);
}

TEST(TwoPossibleAmounts, RequireAReview) {
  EXPECT_EQ(of("EGP 20.00 EGP 30.00 debited from your card", "EGP"), "review 20.00");
}

TEST(AnAmountInTwoCurrencies, IsReadInTheBooksCurrency) {
  EXPECT_EQ(of("Purchase USD 20.00 (EGP 980.00) at Cloud", "EGP"), "expense 980.00");
  EXPECT_EQ(of("Purchase USD 20.00 at Cloud. Available limit EGP 980.00", "EGP"),
            "review USD 20.00");
}

TEST(AnAmountInTwoCurrencies, HasOnlyMarksBetweenTheTwo) {
  EXPECT_EQ(of("Purchase USD 20.00 = EGP 980.00 at Cloud", "EGP"), "expense 980.00");
  EXPECT_EQ(of("Purchase USD 20.00 (= EGP 980.00) at Cloud", "EGP"), "expense 980.00");
  EXPECT_EQ(of("Purchase EGP 980.00 (USD 20.00) at Cloud", "EGP"), "expense 980.00");
  EXPECT_EQ(of("Purchase USD 20.00 ((( EGP 980.00 at Cloud", "EGP"), "review USD 20.00");
  EXPECT_EQ(of("Purchase USD 20.00 and EGP 980.00 at Cloud", "EGP"), "review USD 20.00");
  EXPECT_EQ(of("Purchase USD 20.00 (EUR 18.00) at Cloud", "EGP"), "review USD 20.00");
}

TEST(AnAmountThatIsStatedTwice, IsReadOnce) {
  EXPECT_EQ(of("Purchase EGP 20.00 and EGP 20.00 at Cloud", "EGP"), "expense 20.00");
  EXPECT_EQ(of("Purchase EGP 20.00 and EGP 21.00 at Cloud", "EGP"), "review 20.00");
}

TEST(ANumberWithoutACurrency, IsNoSumBesideOneWithACurrency) {
  EXPECT_EQ(of("Purchase 20.00 and EGP 21.00 at Cloud", "EGP"), "expense 21.00");
}

TEST(AReading, HasTheFirstBalance) {
  EXPECT_EQ(read("Balance EGP 10.00. Balance EGP 20.00. Purchase EGP 30.00", "EGP").balance,
            (Money{1000, "EGP"}));
}

TEST(AReading, HasAccountReferenceAndBalance) {
  const Reading reading = read(
      "Rs.450.00 debited from A/c XX5521 to RAVI TRADERS. Ref No 628811204417. Avl Bal Rs.900.50",
      "INR");
  EXPECT_EQ(reading.account, "5521");
  EXPECT_EQ(reading.reference, "628811204417");
  EXPECT_EQ(reading.balance, (Money{90050, "INR"}));
  EXPECT_EQ(reading.payee, "RAVI TRADERS");
}

TEST(ABalance, MayBeInFrontOfItsWord) {
  const Reading reading = read("You paid EGP 20.00, EGP 900.00 balance", "EGP");
  EXPECT_EQ(reading.amount, (Money{2000, "EGP"}));
  EXPECT_EQ(reading.balance, (Money{90000, "EGP"}));
}

TEST(ABalance, MayBeBehindItsWord) {
  const Reading reading = read("You paid EGP 20.00 balance EGP 900.00", "EGP");
  EXPECT_EQ(reading.amount, (Money{2000, "EGP"}));
  EXPECT_EQ(reading.balance, (Money{90000, "EGP"}));
}

TEST(AReading, PrefersTheUsersAccountToThePayees) {
  EXPECT_EQ(read("PKR 100.00 sent to BILAL KHAN A/C *9901 via IBFT from A/C *1234", "PKR").account,
            "1234");
}

TEST(AReference, HoldsNoSum) {
  EXPECT_EQ(readingText(read("UFA5LL02QR Confirmed. Ksh500.00 sent to JANE WANJIRU", "KES"), "KES",
                        false),
            "expense 500.00");
}

TEST(ATotal, IsTheSumThatMoved) {
  const auto of = [](std::string_view message) {
    return readingText(read(message, "TZS"), "TZS", false);
  };
  EXPECT_EQ(of("Paid.\nCOST TZS 6,557.38\nVAT TZS 1,180.33\nTOTAL TZS 8,000"), "expense 8000.00");
  EXPECT_EQ(of("Paid TZS 2,000.00. Charge TZS 15.00, total deducted TZS 2,020.00"),
            "expense 2020.00");
  EXPECT_EQ(of("Paid TZS 2,000.00. Total TZS 9,000.00"), "expense 2000.00");
}

std::int64_t balanceUnits(const std::string& balance) {
  const auto reading =
      read("Your card ending 4821 was used for EGP 10.00 at Sun Market. " + balance, "EGP");
  return reading.balance ? reading.balance->minorUnits : 0;
}

TEST(ABalance, IsBelowZeroBehindAMinus) {
  for (const char* const balance :
       {"Available balance EGP -900.50", "Available balance: -EGP 900.50", "Balance -900.50 EGP",
        "Balance: \u2212900.50 EGP"}) {
    EXPECT_EQ(balanceUnits(balance), -90050) << balance;
  }
}

TEST(ABalance, IsAboveZeroBehindAHyphenThatDivides) {
  for (const char* const balance : {"Avl Bal:-EGP 900.50", "Available balance - EGP 900.50",
                                    "Bal-EGP 900.50", "Balance EGP-900.50"}) {
    EXPECT_EQ(balanceUnits(balance), 90050) << balance;
  }
}

TEST(ASum, MayFollowTheCodeOfAService) {
  EXPECT_EQ(readingText(read("*165*S*6000 RWF transferred to MARIE UWASE from 36521. Fee was: 100 "
                             "RWF. New balance: 12500 RWF",
                             "RWF"),
                        "RWF", false),
            "expense 6000");
}

TEST(ASum, WithoutACurrencyIsNotOverruledByALaterOneWithACurrency) {
  EXPECT_EQ(read("Compra 34,60 EUR 9000.00 KIOSK tarjeta *7710", "EUR").outcome,
            Outcome::needsReview);
}

}  // namespace
}  // namespace kivo::recognition
