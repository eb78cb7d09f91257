#include "recognition/message_items.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kivo::recognition {
namespace {

TEST(ANumber, EndsBeforeADate) {
  EXPECT_EQ(itemsOf("5000.00,21-11-2026").front().text, "5000.00");
  EXPECT_EQ(itemsOf("5000.00,21-1").front().text, "5000.00");
  EXPECT_EQ(itemsOf("5000.00,21-").front().text, "5000.00,21");
}

TEST(ANumber, MayBeginWithItsPoint) {
  EXPECT_EQ(itemsOf(".93").front().text, ".93");
  EXPECT_EQ(itemsOf(".9").front().text, ".9");
  EXPECT_EQ(itemsOf("-.93").back().text, ".93");
  EXPECT_EQ(itemsOf("$.93").back().text, ".93");
  EXPECT_EQ(itemsOf("total\n.93").back().text, ".93");
  EXPECT_EQ(itemsOf("Rs.93").back().text, "93");
}

TEST(AWord, IsCapitalsWhenAllItsLettersAre) {
  EXPECT_TRUE(itemsOf("AZ'A").front().capitals);
  EXPECT_FALSE(itemsOf("AZa").front().capitals);
}

// The texts of the items, with "|" in front of each that begins a sentence.
std::string cut(std::string_view readable) {
  std::string items;
  for (const Item& item : itemsOf(readable)) {
    if (!items.empty()) items += ' ';
    if (item.startsSentence) items += '|';
    items += item.kind == Item::Kind::lineBreak ? "/" : item.text;
  }
  return items;
}

TEST(AWord, IsOfOneScript) {
  EXPECT_EQ(cut("مبلغSAR"), "|مبلغ sar");
  EXPECT_EQ(cut("SARمبلغ"), "|sar مبلغ");
  EXPECT_EQ(cut("AB尾號x"), "|ab 尾 號 x");
}

TEST(AnApostrophe, BelongsToAWordBetweenItsLetters) {
  EXPECT_EQ(cut("don't 'x' a'"), "|don't ' x ' a '");
}

TEST(ASentence, BeginsBehindAMarkAndABlank) {
  EXPECT_EQ(cut("Hi! x? y. zz"), "|hi ! |x ? |y . |zz");
  EXPECT_EQ(cut("Hi!x"), "|hi ! x");
  EXPECT_EQ(cut("12. x"), "|12 . |x");
  EXPECT_EQ(cut(". x"), "|. x");
  EXPECT_EQ(cut("x\ny"), "|x / |y");
}

TEST(ASentence, GoesOnBehindAnAbbreviationOrInitial) {
  EXPECT_EQ(cut("Mr. Omar"), "|mr . omar");
  EXPECT_EQ(cut("MARIA L. SANTOS"), "|maria l . santos");
  EXPECT_EQ(cut("MARIA LO. SANTOS"), "|maria lo . |santos");
}

TEST(ANumber, IncludesAllThatChangesItsValue) {
  for (const char* const number : {"5e3", "5E+3", "5_000", "5·000", "5×10", "5²7", "5₂", "5₀", "5₉",
                                   "5①", "5⅓", "5⁰", "5⁹", "1,,000", "1.,5", "5,.5"}) {
    EXPECT_EQ(cut(number), "|" + std::string(number));
  }
  EXPECT_EQ(cut("5e 6_ 7+8"), "|5 e 6 _ 7 + 8");
}

TEST(ANumber, EndsBeforeTwoDigitsOfADate) {
  EXPECT_EQ(cut("5,21/x"), "|5 , 21 / x");
  EXPECT_EQ(cut("5,213/x"), "|5,213 / x");
  EXPECT_EQ(cut("5,21/ x"), "|5,21 / x");
}

}  // namespace
}  // namespace kivo::recognition
