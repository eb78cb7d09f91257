#include "names/name_fold.h"

#include <gtest/gtest.h>

namespace kivo::names {
namespace {

TEST(AFoldedName, IgnoresLetterCaseInEveryScript) {
  EXPECT_EQ(foldedName("CARREFOUR"), foldedName("Carrefour"));
  EXPECT_EQ(foldedName("МАГАЗИН РИГА"), foldedName("Магазин Рига"));
  EXPECT_EQ(foldedName("ΦΟΥΡΝΟΣ"), foldedName("Φούρνος"));
  EXPECT_EQ(foldedName("ՀԱՑ"), foldedName("հաց"));
  EXPECT_EQ(foldedName("STRASSE"), foldedName("Straße"));
  EXPECT_EQ(foldedName("İSTANBUL KAPI"), foldedName("istanbul kapı"));
}

TEST(AFoldedName, IgnoresAccents) {
  EXPECT_EQ(foldedName("CAFÉ LUNE"), foldedName("Cafe Lune"));
  EXPECT_EQ(foldedName("ΚΑΦΕ"), foldedName("Καφέ"));
  EXPECT_EQ(foldedName("Cafe\u0301"), foldedName("Café"));
  EXPECT_EQ(foldedName("Ёлка"), foldedName("елка"));
  EXPECT_EQ(foldedName("Łódź Đorđe Smørrebrød"), foldedName("Lodz Dorde Smorrebrod"));
  EXPECT_EQ(foldedName("Phở Hà Nội"), foldedName("pho ha noi"));
  EXPECT_EQ(foldedName("שָׁלוֹם"), foldedName("שלום"));
}

TEST(AFoldedName, IgnoresVariantsOfArabicLetters) {
  EXPECT_EQ(foldedName("أحمد"), foldedName("احمد"));
  EXPECT_EQ(foldedName("إيمان آل ٱلنور"), foldedName("ايمان ال النور"));
  EXPECT_EQ(foldedName("مكتبة"), foldedName("مكتبه"));
  EXPECT_EQ(foldedName("مصطفى"), foldedName("مصطفي"));
  EXPECT_EQ(foldedName("مـتـجـر"), foldedName("متجر"));
  EXPECT_EQ(foldedName("مُحَمَّد"), foldedName("محمد"));
  EXPECT_EQ(foldedName("کافی"), foldedName("كافي"));
  EXPECT_EQ(foldedName("ﻣﺘﺠﺮ"), foldedName("متجر"));
}

TEST(AFoldedName, IgnoresWidthAndHowBlanksAreWritten) {
  EXPECT_EQ(foldedName("ＣＡＦＥ　１２"), foldedName("Cafe 12"));
  EXPECT_EQ(foldedName("ｶﾞｽﾄ"), foldedName("ガスト"));
  EXPECT_EQ(foldedName("  Tulip \t\u00A0 Store\n"), foldedName("Tulip Store"));
  EXPECT_EQ(foldedName("Tu\u200Blip\u200F Store\u00AD"), foldedName("Tulip Store"));
  EXPECT_EQ(foldedName(" \u3000 "), "");
}

TEST(AFoldedName, IgnoresWhetherLettersAreComposed) {
  EXPECT_EQ(foldedName("한국"), foldedName("\u1112\u1161\u11ab\u1100\u116e\u11a8"));
  EXPECT_EQ(foldedName("ガスト"), foldedName("カ\u3099スト"));
}

TEST(AFoldedName, KeepsWhatTellsNamesApart) {
  EXPECT_NE(foldedName("Tulip Store"), foldedName("TulipStore"));
  EXPECT_NE(foldedName("Joe's"), foldedName("Joes"));
  EXPECT_NE(foldedName("ガス"), foldedName("カス"));
  EXPECT_NE(foldedName("किला"), foldedName("कला"));
  EXPECT_NE(foldedName("กิน"), foldedName("กน"));
  EXPECT_NE(foldedName("Кафе"), foldedName("Kafe"));
}

TEST(AFoldedName, IsItsOwnForm) {
  for (const std::string_view name :
       {"Straße ＣＡＦＥ", "Phở Hà Nội", "مُحَمَّد ﷲ", "ガスト 한국", "किला", "½ ﬁ ´ ǰ", "\xFF"}) {
    const std::string folded = foldedName(name);
    EXPECT_EQ(foldedName(folded), folded) << name;
  }
}

TEST(AFoldedName, TakesInvalidUtf8) {
  EXPECT_EQ(foldedName("CAF\xC9 LUNE\xE2\x82"), "caf\uFFFD lune\uFFFD");
  EXPECT_EQ(foldedName("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(foldedName(std::string_view("a\0b", 3)), std::string_view("a\0b", 3));
}

}  // namespace
}  // namespace kivo::names
