#include "platform/foundation/character_set.h"

#include <string>

#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

using namespace std::string_literals;

TEST(TrimmingWhitespaces, RemovesBlanksFromBothEndsOnly) {
  EXPECT_EQ(trimmingWhitespaces(" \t paid  10 \t"), "paid  10");
  EXPECT_EQ(trimmingWhitespaces("paid"), "paid");
  EXPECT_EQ(trimmingWhitespaces(""), "");
}

TEST(TrimmingWhitespaces, ReducesATextOfBlanksToNothing) {
  EXPECT_EQ(trimmingWhitespaces(" "), "");
  EXPECT_EQ(trimmingWhitespaces(" \t \t"), "");
}

TEST(TrimmingWhitespaces, RemovesEveryHorizontalBlank) {
  for (const auto* const blank :
       {"\t", " ", "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005",
        "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"}) {
    EXPECT_EQ(trimmingWhitespaces(blank), "");
    EXPECT_EQ(trimmingWhitespaces(blank + "a"s + blank + "b" + blank + blank), "a"s + blank + "b");
  }
}

TEST(TrimmingWhitespaces, KeepsLineBreaksAndZeroWidthCharacters) {
  // Among them the zero-width ones, which are no blanks: U+180E, U+200B to U+200F, U+2060, U+FEFF.
  for (const auto* const character :
       {"\n", "\r", "\v", "\f", "\u0085", "\u2028", "\u2029", "\u180E", "\u200B", "\u200C",
        "\u200D", "\u200F", "\u2060", "\uFEFF", "\u007F", "\u3001"}) {
    EXPECT_EQ(trimmingWhitespaces(character), character);
  }
  EXPECT_EQ(trimmingWhitespaces("\0"s), "\0"s);
  EXPECT_EQ(trimmingWhitespaces(" \n "), "\n");
}

TEST(TrimmingWhitespaces, ReturnsAViewOfTheText) {
  const std::string text = "  a ";
  EXPECT_EQ(trimmingWhitespaces(text).data(), text.data() + 2);
}

}  // namespace
}  // namespace kivo::platform
