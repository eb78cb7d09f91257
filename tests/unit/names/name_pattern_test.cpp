#include "names/name_pattern.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "names/name_fold.h"

namespace kivo::names {
namespace {

bool matches(const char* pattern, const char* name) {
  const auto read = NamePattern::fromText(pattern);
  return read.has_value() && read->matches(foldedName(name));
}

std::string textOf(const std::string& pattern) {
  const auto read = NamePattern::fromText(pattern);
  return read ? read->text() : "refused";
}

// As UTF-8.
std::string characterOf(char32_t code) {
  const auto unit = [](char32_t bits) { return std::string(1, static_cast<char>(bits)); };
  if (code < 0x80) return unit(code);
  if (code < 0x800) return unit(0xC0 | code >> 6) + unit(0x80 | (code & 0x3F));
  return unit(0xE0 | code >> 12) + unit(0x80 | (code >> 6 & 0x3F)) + unit(0x80 | (code & 0x3F));
}

TEST(ANamePattern, MatchesTheWholeNameInAnySpelling) {
  EXPECT_TRUE(matches("Town Gas", "TOWN  GAS"));
  EXPECT_TRUE(matches("CAFÉ*", "Cafe Lune"));
  EXPECT_TRUE(matches("مكتبة*", "مكتبه النيل"));
  EXPECT_TRUE(matches("*مصطفى", "أبو مصطفي"));
  EXPECT_FALSE(matches("Town Gas", "Town Gas 2"));
  EXPECT_FALSE(matches("مكتبة*", "دار مكتبة"));
}

TEST(ANamePattern, MatchesAnyCharactersAtAStar) {
  EXPECT_TRUE(matches("TALABAT*", "Talabat"));
  EXPECT_TRUE(matches("TALABAT*", "TALABAT 1234 CAIRO"));
  EXPECT_TRUE(matches("*gas*", "Town Gas Co"));
  EXPECT_TRUE(matches("T*s", "Town Gas"));
  EXPECT_FALSE(matches("TALABAT *", "Talabat"));
  EXPECT_FALSE(matches("TALABAT?", "Talabat1"));
}

TEST(ANamePattern, HasLiteralStarsAndBackslashesBehindBackslashes) {
  EXPECT_TRUE(matches("UBER \\*TRIP", "Uber *Trip"));
  EXPECT_FALSE(matches("UBER \\*TRIP", "Uber Eats Trip"));
  EXPECT_TRUE(matches("UBER \\**", "UBER *EATS"));
  EXPECT_FALSE(matches("UBER \\**", "UBER EATS"));
  EXPECT_TRUE(matches("A\\\\B", "a\\b"));
  EXPECT_TRUE(matches("A\\B", "a\\b"));
  EXPECT_TRUE(matches("A\\\\*", "a\\tail"));
  EXPECT_FALSE(matches("A\\\\*", "a*"));
  EXPECT_TRUE(matches("A\\", "a\\"));
}

TEST(ANamePattern, IsRefusedWithoutAnythingBesideItsStars) {
  for (const char* const text : {"", " ", "*", "**", " * ", "* *", "\u200B", "＊"}) {
    EXPECT_FALSE(NamePattern::fromText(text)) << text;
  }
  EXPECT_TRUE(NamePattern::fromText("\\*"));
  EXPECT_TRUE(NamePattern::fromText("\\"));
}

TEST(ANamePattern, HasOneTextForAllWaysToWriteIt) {
  EXPECT_EQ(textOf("  TALABAT**  Cairo "), "talabat* cairo");
  EXPECT_EQ(textOf("talabat* CAIRO"), "talabat* cairo");
  EXPECT_EQ(textOf("A\\B"), "a\\\\b");
  EXPECT_EQ(textOf("Uber ＼＊Trip"), "uber \\*trip");
}

TEST(ANamePattern, OfANameMatchesThatNameAlone) {
  EXPECT_EQ(NamePattern::textFor("Town Gas"), "Town Gas");
  EXPECT_EQ(NamePattern::textFor("UBER *TRIP"), "UBER \\*TRIP");
  EXPECT_EQ(NamePattern::textFor("a\\*"), "a\\\\\\*");
  for (const char* const hostile : {"*", "**", "\\*", "＊", "﹡", "\\", "\\\\*", "＼＊"}) {
    const auto pattern = NamePattern::fromText(NamePattern::textFor(hostile));
    ASSERT_TRUE(pattern) << hostile;
    EXPECT_FALSE(pattern->hasWildcard()) << hostile;
    EXPECT_TRUE(pattern->matches(foldedName(hostile))) << hostile;
    EXPECT_FALSE(pattern->matches("town gas")) << hostile;
  }
}

TEST(ANamePattern, OfANameWithAnyCharacterMatchesThatNameAlone) {
  for (char32_t code = 1; code < 0x10000; ++code) {
    if (code >= 0xD800 && code < 0xE000) continue;  // no characters
    const std::string name = "a" + characterOf(code) + "b";
    const auto pattern = NamePattern::fromText(NamePattern::textFor(name));
    ASSERT_TRUE(pattern && !pattern->hasWildcard()) << name;
    ASSERT_TRUE(pattern->matches(foldedName(name))) << name;
  }
}

TEST(ANamePattern, IsReadBackFromItsText) {
  std::mt19937 random(7);
  constexpr std::string_view marks = "a *\\B";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (auto left = random() % 9; left > 0; --left) text += marks[random() % marks.size()];
    const auto pattern = NamePattern::fromText(text);
    if (pattern) {
      ASSERT_EQ(textOf(pattern->text()), pattern->text()) << text;
    }
    const std::string name = foldedName(text);
    if (name.empty()) continue;
    const auto ofName = NamePattern::fromText(NamePattern::textFor(text));
    ASSERT_TRUE(ofName && ofName->matches(name) && !ofName->hasWildcard()) << text;
    ASSERT_EQ(ofName->text(), NamePattern::textFor(name)) << text;
  }
}

TEST(ANamePattern, IsMoreExactWithoutAStarThenWithMoreCharacters) {
  const auto isMoreExact = [](const char* one, const char* other) {
    return NamePattern::fromText(one)->isMoreExactThan(*NamePattern::fromText(other));
  };
  EXPECT_TRUE(isMoreExact("Gas", "Town Gas*"));
  EXPECT_FALSE(isMoreExact("Town Gas*", "Gas"));
  EXPECT_TRUE(isMoreExact("Town Gas*", "Town*"));
  EXPECT_TRUE(isMoreExact("*Town Gas*", "Town*"));
  EXPECT_FALSE(isMoreExact("Town*", "*Gaso"));  // both have four
  EXPECT_FALSE(isMoreExact("*Gaso", "Town*"));
  EXPECT_TRUE(isMoreExact("كافيه*", "مقه*"));
  EXPECT_FALSE(isMoreExact("مقه*", "cafe*"));  // characters, and not bytes
  EXPECT_TRUE(isMoreExact("A\\*B*", "AB*"));
}

}  // namespace
}  // namespace kivo::names
