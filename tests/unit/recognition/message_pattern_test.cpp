#include "recognition/templates/message_pattern.h"

#include <chrono>
#include <string>

#include <gmock/gmock.h>

#include "recognition/reading.h"
#include "recognition/templates/message_text.h"

namespace kivo::recognition {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::optional<PatternFit> fit(std::string_view text, std::string_view message) {
  return MessagePattern::parse(text).fit(templateForm(message));
}

// "amount | payee", or "no fit".
std::string parts(std::string_view text, std::string_view message) {
  const auto found = fit(text, message);
  if (!found) return "no fit";
  std::string amounts;
  for (const std::string& amount : found->amounts) {
    if (!amounts.empty()) amounts += " or ";
    amounts += amount;
  }
  return amounts + " | " + found->payee;
}

// Empty when `text` is a pattern.
std::string errorOf(std::string_view text) {
  try {
    MessagePattern::parse(text);
  } catch (const InvalidPattern& invalid) {
    return invalid.what();
  }
  return "";
}

TEST(APattern, FindsTheSumAndTheName) {
  EXPECT_EQ(parts("Tx of EGP {amount} at {payee} on {any}.",
                  "Tx of EGP 1,150.50 at Sunny Market on 21/11."),
            "1,150.50 | Sunny Market");
}

TEST(APattern, HasToFitTheWholeMessage) {
  EXPECT_EQ(parts("Tx {amount} done", "A Tx 5 done"), "no fit");
  EXPECT_EQ(parts("Tx {amount} done", "Tx 5 done."), "no fit");
  EXPECT_EQ(parts("Tx {amount} done", "Tx 5 done"), "5 | ");
  EXPECT_EQ(parts("Tx done", "Tx done"), " | ");
  EXPECT_EQ(parts("Tx done", "Tx done now"), "no fit");
}

TEST(APattern, TakesAnyRunOfWhiteSpaceForAnother) {
  EXPECT_EQ(parts("Tx of  {amount}\nat {payee} end", " Tx\tof\r\n\r\n5 at \u00a0 A\u202fB end\n"),
            "5 | A B");
}

TEST(APattern, DistinguishesCase) { EXPECT_EQ(parts("tx {amount} x", "Tx 5 x"), "no fit"); }

TEST(APattern, ReadsDigitsAndMarksOfOtherScripts) {
  EXPECT_EQ(parts("شراء {amount} جنيه من {payee}، شكرا", "شراء ١٬١٥٠٫٥٠ جنيه من سوق النيل, شكرا"),
            "1,150.50 | سوق النيل");
  EXPECT_EQ(parts("Tx {amount} done", "Tx \u200f۱۵۰\u200e done"), "150 | ");
}

TEST(APattern, LeavesNoPlaceholderEmpty) {
  EXPECT_EQ(parts("at {payee}, ref{any}", "at , ref1"), "no fit");
  EXPECT_EQ(parts("at {payee}, ref{any}", "at A, ref"), "no fit");
  EXPECT_EQ(parts("at {payee}, ref{any}", "at A, ref1"), " | A");
  EXPECT_EQ(parts("x{any}x", "xx"), "no fit");
  EXPECT_EQ(parts("x{any}x", "xyx"), " | ");
  EXPECT_EQ(parts("x{any}x", "x"), "no fit");
}

TEST(APattern, TakesOnlyAWholeNumberForTheSum) {
  EXPECT_EQ(parts("paid {amount}.00 now", "paid 5.00 now"), "no fit");
  EXPECT_EQ(parts("paid 1{amount} now", "paid 150 now"), "no fit");
  EXPECT_EQ(parts("paid {amount} now", "paid five now"), "no fit");
  EXPECT_EQ(parts("paid {amount} now", "paid 5 6 now"), "no fit");
  EXPECT_EQ(parts("paid{amount}EGP", "paid.75EGP"), "no fit");
  EXPECT_EQ(parts("paid {amount}EGP", "paid .75EGP"), ".75 | ");
}

TEST(APattern, TakesGroupsBehindBlanksForOneNumber) {
  EXPECT_EQ(parts("paid {amount} EUR", "paid 1 234 567,50 EUR"), "1234567,50 | ");
  EXPECT_EQ(parts("paid {amount} EUR", "paid 1\u202f234,50 EUR"), "1234,50 | ");
  EXPECT_EQ(parts("paid {any} {amount} EUR", "paid on 1 234,50 EUR"), "1234,50 or 234,50 | ");
}

TEST(APattern, FindsTheSumBehindOtherNumbers) {
  EXPECT_EQ(parts("{any} {amount} EGP at {payee} end", "21/11/2026 10:33 150.00 EGP at A end"),
            "150.00 | A");
}

TEST(APattern, NamesTwoSumsWhenSeveralNumbersCouldBeIt) {
  EXPECT_THAT(fit("Tx {any} {amount} {any} end", "Tx 1 22 5.00 7 8 end")->amounts,
              ElementsAre("22", "5.00"));
  EXPECT_EQ(fit("Tx {any} {amount} {payee} end", "Tx 1 22 5.00 A end")->payee, "");
}

TEST(APattern, GivesTheNameAllThatTheOtherPartsLeave) {
  EXPECT_EQ(parts("{any} {any} {payee} {amount} EGP", "21/11 10:33 SUNNY MARKET 5 EGP"),
            "5 | SUNNY MARKET");
  EXPECT_EQ(parts("Tx {amount} at {payee} {any} {any}", "Tx 5 at SUNNY MARKET 21/11 10:33"),
            "5 | SUNNY MARKET");
  EXPECT_EQ(parts("to {payee}. Call {any}", "to Dr. Smith. Call Me. Call 19"),
            " | Dr. Smith. Call Me");
}

TEST(APattern, FitsLiteralsThatOverlap) {
  EXPECT_EQ(parts("aab{any}aab{payee}b", "aabxaaabaabyb"), " | aaby");
  EXPECT_EQ(parts("{any}aab", "aaaab"), " | ");
}

TEST(APattern, WritesABraceTwice) {
  EXPECT_EQ(parts("a {{amount} is {amount} }}", "a {amount} is 5 }}"), "5 | ");
  EXPECT_EQ(parts("{{{payee}} x", "{A} x"), " | A");
  EXPECT_EQ(MessagePattern::escaped("{a}{{"), "{{a}{{{{");
}

TEST(APattern, TakesQuotesBackslashesAndEmojiAsTheyAre) {
  EXPECT_EQ(
      parts(R"("\d+" 🛒 {amount} 'at' {payee} 🎉.)", R"("\d+" 🛒 5 'at' C:\A "B" 🎉.)"),
      R"(5 | C:\A "B")");
}

TEST(APattern, IsRefusedWithUnknownPlaceholders) {
  for (const char* const text : {"a {sum} b", "a { amount } b", "a { b", "a {} b", "a {Any} b"}) {
    EXPECT_THAT(errorOf(text), HasSubstr("a brace itself is written {{")) << text;
  }
}

TEST(APattern, IsRefusedWhenPlaceholdersTouch) {
  for (const char* const text : {"a {any}{amount}", "a {payee}{any} b", "a {any}{any}"}) {
    EXPECT_THAT(errorOf(text), HasSubstr("two placeholders touch")) << text;
  }
}

TEST(APattern, IsRefusedWithTwoSumsOrTwoNames) {
  EXPECT_THAT(errorOf("a {amount} b {amount}"), HasSubstr("may each be there once"));
  EXPECT_THAT(errorOf("a {payee} b {payee}"), HasSubstr("may each be there once"));
}

TEST(APattern, IsRefusedWithoutAWord) {
  for (const char* const text : {"", "{any}", "{amount}", "{any} - {amount}.", "12:{any}"}) {
    EXPECT_THAT(errorOf(text), HasSubstr("needs a word")) << text;
  }
}

// The pieces that make a search compare most: runs of one letter, nearly found at every place.
TEST(APattern, TakesMillisecondsForTheLongestMessage) {
  const std::string text(longestMessage, 'a');
  const std::string run(longestMessage / 2, 'a');
  const std::string part(longestMessage / 4, 'a');
  std::string numbers;
  while (numbers.size() < longestMessage) numbers += "a 1 ";
  std::string manyPlaces = "x";
  for (std::size_t place = 0; place < longestMessage; ++place) manyPlaces += "{any}a";
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(parts("{any}" + run + "b", text), "no fit");
  EXPECT_EQ(parts("{any}" + run + "b{any}", text), "no fit");
  EXPECT_EQ(parts("{any}b" + run + "{any}c", text + "c"), "no fit");
  EXPECT_EQ(parts("{any}" + part + "{payee}b" + part + "{any}" + part, text), "no fit");
  EXPECT_EQ(parts("{any}" + run + "{amount} b", text + "1 b"), "1 | ");
  EXPECT_EQ(parts("{any}" + numbers.substr(0, longestMessage / 2) + "{amount} b", numbers),
            "no fit");
  EXPECT_EQ(parts("{any}a {amount} a {any}", numbers), "1 or 1 | ");
  EXPECT_EQ(parts("{any}1,{amount} b", std::string(longestMessage, '1')), "no fit");
  EXPECT_EQ(parts(manyPlaces, text), "no fit");
  // Some milliseconds together, and time for a busy machine and a slow build.
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST(TheFormOfAMessage, IsTheSameTwice) {
  for (const char* const text : {"لـ أحمد \u200f١٢٬٥ ـ", " a\u2009b \r\n c\ufeff", "ک ی 。"}) {
    EXPECT_EQ(templateForm(templateForm(text)), templateForm(text));
  }
}

TEST(NumbersOfAMessage, BeginOutsideOfNumbersOnly) {
  const std::string text = "a1,234.50 .5 Rs.75 1 234";
  std::vector<std::string> found;
  for (std::size_t at = 0; at <= text.size(); ++at) {
    for (const MessageNumber& number : numbersAt(text, at)) found.push_back(number.digits);
  }
  EXPECT_THAT(found, ElementsAre("1,234.50", ".5", "75", "1", "1234", "234"));
}

TEST(NumbersOfAMessage, MayBeAtItsFront) {
  EXPECT_THAT(numbersAt("12", 0), testing::SizeIs(1));
  EXPECT_THAT(numbersAt("12", 1), IsEmpty());
  EXPECT_THAT(numbersAt(".5", 0), testing::SizeIs(1));
  EXPECT_THAT(numbersAt(".5", 1), IsEmpty());
}

TEST(NumbersOfAMessage, HaveALargestLength) {
  EXPECT_THAT(numbersAt(std::string(64, '1'), 0), testing::SizeIs(1));
  EXPECT_THAT(numbersAt(std::string(65, '1'), 0), IsEmpty());
}

}  // namespace
}  // namespace kivo::recognition
