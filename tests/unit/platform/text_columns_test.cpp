#include "platform/linux/process/text_columns.h"

#include <gtest/gtest.h>

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

TEST(TextColumns, AreNoneForAccentsAndDirectionMarks) {
  EXPECT_EQ(columnsOf("e\u0301"), 1U);
  EXPECT_EQ(columnsOf("\u200f5\u200f"), 1U);
}

TEST(TextColumns, AreOneForBytesThatAreNoText) { EXPECT_EQ(columnsOf("a\xff"), 2U); }

TEST(TextColumns, AreFilledWithBlanks) {
  EXPECT_EQ(paddedTo(4, "円"), "円  ");
  EXPECT_EQ(paddedTo(2, "long"), "long");
}

TEST(TextColumns, CutATextThatDoesNotFitBeforeTheCharacterThatPassesThem) {
  EXPECT_EQ(cutTo(4, "abcd"), "abcd");
  EXPECT_EQ(cutTo(4, "abcde"), "abc…");
  EXPECT_EQ(cutTo(4, "a円円"), "a円…");
  EXPECT_EQ(cutTo(3, "a円円"), "a…");
}

}  // namespace
}  // namespace kivo::linux_platform
