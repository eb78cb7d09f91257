#include "recognition/spelling.h"

#include <gtest/gtest.h>

namespace kivo::recognition {
namespace {

TEST(TheReadableForm, HasWesternDigits) {
  EXPECT_EQ(readableForm("٠٩ ۰۹ ०९ ০৯ ๐๙ ０９ ០៩"), "09 09 09 09 09 09 09");
  EXPECT_EQ(readableForm("／："), "／:") << "the characters beside the wide digits are not digits";
}

TEST(TheReadableForm, HasPlainBlanksAndSeparators) {
  EXPECT_EQ(readableForm("a\tb\r\nc\u00A0d\u3000e"), "a b\nc d e");
  EXPECT_EQ(readableForm("١٬٢٣٤٫٥٠، ’x‘ – —"), "1,234.50, 'x' - -");
  EXPECT_EQ(readableForm("1\u2009234\u202F567"), "1\u202F234\u202F567") << "narrow blanks group";
}

TEST(TheReadableForm, HasNoInvisibleMarksOrStretchedLetters) {
  EXPECT_EQ(readableForm("a\u200Bb\u200Fc\uFEFFd"), "abcd");
  EXPECT_EQ(readableForm("محـــمد"), "محمد");
  EXPECT_EQ(readableForm("لـ أحمد"), "ل  أحمد") << "a single letter is a preposition";
  EXPECT_EQ(readableForm("1لـSAR"), "1ل SAR");
}

TEST(ACharacter, HasOneToFourBytes) {
  EXPECT_EQ(characterLength(""), 0U);
  EXPECT_EQ(characterLength("ab"), 1U);
  EXPECT_EQ(characterLength("بx"), 2U);
  EXPECT_EQ(characterLength("€x"), 3U);
  EXPECT_EQ(characterLength("🎉x"), 4U);
  EXPECT_EQ(characterLength("\xF0\x80\x80\x80\x80"), 4U);
  EXPECT_EQ(characterLength("\xD8"), 1U);
  EXPECT_EQ(characterLength("a\x80"), 1U);
}

TEST(WholeCharacters, AreNotCutInTwo) {
  EXPECT_EQ(wholeCharacters("aب", 3), 3U);
  EXPECT_EQ(wholeCharacters("aب", 2), 1U);
  EXPECT_EQ(wholeCharacters("aبb", 3), 3U);
  EXPECT_EQ(wholeCharacters("ab", 1), 1U);
  EXPECT_EQ(wholeCharacters("\x80\x80", 1), 0U);
}

}  // namespace
}  // namespace kivo::recognition
