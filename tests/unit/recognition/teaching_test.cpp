#include "recognition/templates/teaching.h"

#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "recognition/templates/message_text.h"

namespace kivo::recognition {

using money::Kind;
using money::Money;

namespace {

using testing::HasSubstr;

TaughtParts spent(const std::string& amount, const std::string& payee = "") {
  return {.kind = Kind::expense, .amount = amount, .payee = payee};
}

// The template's text, or the error.
std::string written(const std::string& message, const TaughtParts& parts) {
  try {
    return teach(message, parts, "EGP").text;
  } catch (const CannotTeach& wrong) {
    return std::string("error: ") + wrong.what();
  }
}

// The part that is wrong; absent when a template is made.
std::optional<CannotTeach::Part> wrongPart(const std::string& message, const TaughtParts& parts) {
  try {
    teach(message, parts, "EGP");
  } catch (const CannotTeach& wrong) {
    return wrong.part();
  }
  return std::nullopt;
}

TEST(Teaching, PutsPlaceholdersForSumAndPayee) {
  EXPECT_EQ(written("Zap! EGP 150.00 flew to Nile Cinema today.", spent("150.00", "Nile Cinema")),
            "Zap! EGP {amount} flew to {payee} today.");
}

TEST(Teaching, PutsAnyForAllOtherFigures) {
  EXPECT_EQ(written("Zap! 5 EGP via XX4821, on 21/11/2026 at 10:33. Ref:FT99812 bal=20.50 (no 7)",
                    spent("5")),
            "Zap! {amount} EGP via {any}, on {any} at {any}. Ref:{any} bal={any} (no {any})");
}

TEST(Teaching, PutsAnyForMonthsDaysAndHalvesOfTheDayInDates) {
  EXPECT_EQ(written("Zap! 5 EGP on Sat, 21 Nov 2026 10:33 PM. Thanks", spent("5")),
            "Zap! {amount} EGP on {any}, {any}. Thanks");
  EXPECT_EQ(written("خصم ٥ جنيه يوم ٢١ نوفمبر ٢٠٢٦ شكرا", spent("٥")),
            "خصم {amount} جنيه يوم {any} شكرا");
  EXPECT_EQ(written("You may pay: 5 EGP on Mon", spent("5")), "You may pay: {amount} EGP on Mon");
}

TEST(Teaching, FitsTheNextMessageOfTheBank) {
  const MessageTemplate taught =
      teach("Zap! EGP 150.00 to Nile Cinema 21/11/2026 10:33 card 4821 bal 99.10",
            spent("150.00", "Nile Cinema"), "EGP");
  const Reading next =
      readWith({taught},
               "Zap! EGP 1,020.00 to Old Town Book Shop 03/12/2026 08:01 card 4821 "
               "bal 1,000.00",
               "EGP");
  EXPECT_EQ(next.amount, (Money{102000, "EGP"}));
  EXPECT_EQ(next.payee, "Old Town Book Shop");
}

TEST(Teaching, KeepsFiguresBesideAPlaceholderApart) {
  EXPECT_EQ(
      written("21/11 10:33 Nile Cinema 150.00 EGP 20.50 30.75 zap", spent("150.00", "Nile Cinema")),
      "{any} {any} {payee} {amount} EGP {any} zap");
}

TEST(Teaching, TakesTheSumWithTheWordsBesideIt) {
  EXPECT_EQ(written("Zap! 5 EGP gone, 5 EGP left", spent("5 EGP gone")),
            "Zap! {amount} EGP gone, {any} EGP left");
  EXPECT_EQ(written("Zap! EGP5 gone", spent("EGP5")), "Zap! EGP{amount} gone");
}

TEST(Teaching, AsksForMoreOfASumThatIsThereTwice) {
  EXPECT_EQ(written("Zap! 5 EGP gone, 5 EGP left", spent("5")),
            "error: is in the message more than once; give it with the words beside it");
}

TEST(Teaching, RefusesASumThatIsNotInTheMessage) {
  for (const char* const amount :
       {"", "6", "50.00", "EGP", "150.00 EGP at 10", "1,50.00", "150,00", "1e2"}) {
    const std::string message = "Zap! 150.00 EGP at 10:33";
    EXPECT_EQ(wrongPart(message, spent(amount)), CannotTeach::Part::amount) << amount;
    EXPECT_EQ(written(message, spent(amount)),
              "error: has to be one number of the message, as it is there or such as 1,189.50: "
              "commas only between thousands")
        << amount;
  }
}

TEST(Teaching, TakesTheSumInAnotherSpellingThanTheMessages) {
  EXPECT_EQ(written("Zap! 1189.50 EGP gone", spent("1,189.50")), "Zap! {amount} EGP gone");
  EXPECT_EQ(written("Zap! 1.189,50 EUR gone", spent("1,189.50")), "Zap! {amount} EUR gone");
  EXPECT_EQ(written("Zap! 1 189,50 EGP gone", spent("1189.5")), "Zap! {amount} EGP gone");
  EXPECT_EQ(written("Zap! 150.00 EGP gone", spent("150")), "Zap! {amount} EGP gone");
  EXPECT_EQ(written("Zap! 150.00 EGP gone, 150 EGP left", spent("150.0")),
            "error: is in the message more than once; give it with the words beside it");
}

TEST(Teaching, RefusesAPayeeThatIsNotInTheMessage) {
  EXPECT_EQ(wrongPart("Zap! 5 to A", spent("5", "B")), CannotTeach::Part::payee);
  EXPECT_EQ(written("Zap! 5 to A", spent("5", "B")),
            "error: has to be a part of the message, as it is there");
}

TEST(Teaching, FindsThePayeeAsWholeWords) {
  EXPECT_EQ(written("Zapper! 5 gone to Zap now", spent("5", "Zap")),
            "Zapper! {amount} gone to {payee} now");
  EXPECT_EQ(written("خصم ٥ لكارفور الان", spent("٥", "كارفور")), "خصم {amount} ل{payee} الان");
}

TEST(Teaching, PutsAnyForThePayeesNameElsewhere) {
  EXPECT_EQ(written("Zap! 5 to Nile. Nile thanks you", spent("5", "Nile")),
            "Zap! {amount} to {payee}. {any} thanks you");
}

TEST(Teaching, KeepsAPayeeWithDigits) {
  EXPECT_EQ(written("Zap! 5 to 7-Eleven 24 today", spent("5", "7-Eleven 24")),
            "Zap! {amount} to {payee} today");
}

TEST(Teaching, WritesTheCurrencyThatIsBesideTheSum) {
  EXPECT_EQ(teach("Zap! 20 USD gone", spent("20"), "EGP").currency, money::CurrencyCode("USD"));
  EXPECT_EQ(teach("Zap! 20 gone", spent("20"), "EGP").currency, money::CurrencyCode("EGP"));
  EXPECT_EQ(
      teach("Zap! 20 gone",
            {.kind = Kind::expense, .amount = "20", .currency = money::CurrencyCode("KWD")}, "EGP")
          .currency,
      money::CurrencyCode("KWD"));
}

TEST(Teaching, NeedsNoSumForMessagesThatAreNoPayment) {
  const MessageTemplate taught =
      teach("Zap news: 20 % off until 21/11", {.kind = std::nullopt}, "EGP");
  EXPECT_EQ(taught.text, "Zap news: {any} % off until {any}");
  EXPECT_EQ(taught.kind, std::nullopt);
  EXPECT_FALSE(taught.currency);
}

TEST(Teaching, RefusesAMessageOfFiguresAlone) {
  EXPECT_THAT(written("123456", {.kind = std::nullopt}), HasSubstr("needs a word"));
}

TEST(Teaching, FindsTheSumByItsPlaceAmongOtherNumbers) {
  EXPECT_EQ(written("Zap 1 2 150.00 4 5", spent("150.00")), "Zap {any} {any} {amount} {any} {any}");
}

TEST(Teaching, RefusesASumThatCouldBeAnotherNumber) {
  const std::string error = "error: cannot be told from the other numbers by the words beside it";
  EXPECT_EQ(written("Nile 3 5.00 12 zap", spent("5.00", "Nile 3")), error);
  EXPECT_EQ(written("7 Nile 3 150.00 zap", spent("150.00", "Nile 3")), error);  // or 3150.00
}

TEST(Teaching, KeepsBracesQuotesBackslashesAndEmoji) {
  const std::string message = "{amount} \"Zap\" \\d 🛒 {5} EGP at 'A{'";
  EXPECT_EQ(written(message, spent("5")), R"({{amount} "Zap" \d 🛒 {{{amount}} EGP at 'A{{')");
}

TEST(Teaching, TakesLineBreaksAsBlanks) {
  EXPECT_EQ(written("Zap!\r\n5 EGP\r\n\r\nto A\n", spent("5", "A")),
            "Zap! {amount} EGP to {payee}");
}

TEST(Teaching, LeavesNoDigitInTheTemplate) {
  for (const char* const message :
       {"4821EGP5EGP99 zap1", "zap:5/12/2026-٣", "#5# *1234* zap ۱۲", "zap 5 €1.000 1.x2y3"}) {
    const std::string text = written(message, spent("5"));
    EXPECT_EQ(text.find_first_of("0123456789"), std::string::npos) << text;
  }
}

TEST(Teaching, ProposesTheNumberThatStatesASum) {
  const std::string message = "Zap! EGP 1,150.00 of 20.50 and 20.50, ٣٠ left";
  EXPECT_EQ(numberFor(message, {115000, "EGP"}), "1,150.00");
  EXPECT_EQ(numberFor(message, {3000, "EGP"}), "30");
  EXPECT_EQ(numberFor(message, {2050, "EGP"}), "");  // twice
  EXPECT_EQ(numberFor(message, {7, "EGP"}), "");
}

TEST(Teaching, ProposesTheFirstSumOfAnUnknownMessage) {
  EXPECT_EQ(firstSum("Zap 21/11: EGP 150.00 gone, EGP 20.00 left", "EGP"), "150.00");
  EXPECT_EQ(firstSum("Zap 1 234,50 EUR gone", "EUR"), "1 234,50");
  EXPECT_EQ(firstSum("Zap EGP 5 gone, EGP 5 left", "EGP"), "");
  EXPECT_EQ(firstSum("Zap 4821", "EGP"), "");
}

TEST(Teaching, KnowsWhetherAMessageNamesAPayee) {
  EXPECT_TRUE(namesPayee("Zap! 5 to  Nile\nCinema", "Nile Cinema"));
  EXPECT_FALSE(namesPayee("Zap! 5 to Nile", "Cinema"));
  EXPECT_FALSE(namesPayee("Zap! 5 to Nile", ""));
}

}  // namespace
}  // namespace kivo::recognition
