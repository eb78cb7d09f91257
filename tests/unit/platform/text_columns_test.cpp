#include "platform/linux/terminal/text_columns.h"

#include <clocale>
#include <cwchar>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include "platform/linux/foundation/safe_text.h"

namespace kivo::linux_platform {
namespace {

TEST(TextColumns, AreOneForALetterOfAnyAlphabet) {
  EXPECT_EQ(columnsOf(""), 0U);
  EXPECT_EQ(columnsOf("Kivo"), 4U);
  EXPECT_EQ(columnsOf("١٧٥٫٥٠"), 6U);
  EXPECT_EQ(columnsOf("EGP\u00a01"), 5U);
}

TEST(TextColumns, AreTwoForAWideCharacter) {
  EXPECT_EQ(columnsOf("円"), 2U);
  EXPECT_EQ(columnsOf("💸"), 2U);
}

TEST(TextColumns, AreZeroForAccentsAndDirectionMarks) {
  EXPECT_EQ(columnsOf("e\u0301"), 1U);
  EXPECT_EQ(columnsOf("\u200f5\u200f"), 1U);
}

TEST(TextColumns, AreZeroForLaterLettersOfASyllable) {
  EXPECT_EQ(columnsOf("\u1112\u1161\u11ab"), 2U);
}

TEST(TextColumns, MatchWcwidthForVisibleCharacters) {
  struct FreeLocale {
    void operator()(locale_t locale) const { freelocale(locale); }
  };
  const std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale> locale(
      newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr));
  if (!locale) GTEST_SKIP() << "the system has no locale to ask";
  const locale_t before = uselocale(locale.get());
  int compared = 0;
  for (UChar32 character = ' '; character <= 0x10ffff; ++character) {
    const bool isSurrogate = character >= 0xd800 && character <= 0xdfff;
    // Circled digits and hexagrams, for which the widths differ.
    const bool disputed = (character >= 0x3248 && character <= 0x324f) ||
                          (character >= 0x4dc0 && character <= 0x4dff);
    if (isSurrogate || disputed) continue;
    std::string text;
    icu::UnicodeString(character).toUTF8String(text);
    const int width = wcwidth(static_cast<wchar_t>(character));
    if (width < 0 || escapedControls(text) != text) continue;  // too new for the system, or escaped
    EXPECT_EQ(columnsOf(text), static_cast<std::size_t>(width)) << std::hex << character;
    ++compared;
  }
  uselocale(before);
  EXPECT_GT(compared, 100'000);
}

TEST(TextColumns, AreOneForInvalidUtf8) { EXPECT_EQ(columnsOf("a\xff"), 2U); }

TEST(TextColumns, ArePaddedWithBlanks) {
  EXPECT_EQ(paddedTo(4, "円"), "円  ");
  EXPECT_EQ(paddedTo(2, "long"), "long");
}

TEST(TextColumns, CutATextBeforeTheFirstCharacterThatDoesNotFit) {
  EXPECT_EQ(cutTo(4, "abcd"), "abcd");
  EXPECT_EQ(cutTo(4, "abcde"), "abc…");
  EXPECT_EQ(cutTo(4, "a円円"), "a円…");
  EXPECT_EQ(cutTo(3, "a円円"), "a…");
}

TEST(WrappedText, BreaksBetweenWords) {
  EXPECT_EQ(wrappedTo(9, "one two three"), "one two\nthree\n");
  EXPECT_EQ(wrappedTo(7, "one two three"), "one two\nthree\n");
  EXPECT_EQ(wrappedTo(6, "one two three"), "one\ntwo\nthree\n");
  EXPECT_EQ(wrappedTo(80, " one   two "), "one two\n");
  EXPECT_EQ(wrappedTo(80, ""), "\n");
}

TEST(WrappedText, BreaksAWordThatIsWiderThanALine) {
  EXPECT_EQ(wrappedTo(4, "a abcdefghij k"), "a\nabcd\nefgh\nij k\n");
  EXPECT_EQ(wrappedTo(3, "円円円"), "円\n円\n円\n");
  EXPECT_EQ(wrappedTo(1, "円円"), "円円\n");  // no character fits
}

TEST(WrappedText, IsIndentedWithinItsColumns) {
  EXPECT_EQ(wrappedTo(9, "one two three", "  "), "  one two\n  three\n");
  EXPECT_EQ(wrappedTo(0, "one two", "  "), "  one\n  two\n");
}

TEST(WrappedText, IsOneLineWhereTheWidthHasNoLimit) {
  EXPECT_EQ(wrappedTo(std::numeric_limits<std::size_t>::max(), "one two", "  "), "  one two\n");
}

}  // namespace
}  // namespace kivo::linux_platform
