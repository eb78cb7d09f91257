#include <gtest/gtest.h>

#include "ledger/recognition/reading.h"
#include "unit/ledger/reading_text.h"

namespace kivo::ledger {
namespace {

std::string of(std::string_view message, std::string_view book) {
  return readingText(read(message, book), book, false);
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

TEST(TwoPossibleAmounts, RequireAReview) {
  EXPECT_EQ(of("EGP 20.00 EGP 30.00 debited from your card", "EGP"), "review 20.00");
}

TEST(AnAmountInTwoCurrencies, IsReadInTheBooksCurrency) {
  EXPECT_EQ(of("Purchase USD 20.00 (EGP 980.00) at Cloud", "EGP"), "expense 980.00");
  EXPECT_EQ(of("Purchase USD 20.00 at Cloud. Available limit EGP 980.00", "EGP"),
            "review USD 20.00");
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

TEST(AReading, PrefersTheUsersAccountToThePayees) {
  EXPECT_EQ(read("PKR 100.00 sent to BILAL KHAN A/C *9901 via IBFT from A/C *1234", "PKR").account,
            "1234");
}

}  // namespace
}  // namespace kivo::ledger
