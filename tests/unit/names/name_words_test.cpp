#include "names/name_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kivo::names {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AName, IsCutAtBlanksPunctuationAndSymbols) {
  EXPECT_THAT(foldedWords("H&M Café"), ElementsAre("h", "m", "cafe"));
  EXPECT_THAT(foldedWords("APPLE.COM/BILL"), ElementsAre("apple", "com", "bill"));
  EXPECT_THAT(foldedWords("SQ *Blue-Bottle™ #12"), ElementsAre("sq", "blue", "bottletm", "12"));
}

TEST(AName, KeepsVowelSignsInItsWords) {
  EXPECT_THAT(foldedWords("किराना दुकान"), ElementsAre("किराना", "दुकान"));
  EXPECT_THAT(foldedWords("มหาวิทยาลัย"), ElementsAre("มหาวิทยาลัย"));
}

TEST(AName, HasNoWordsWithoutLettersAndDigits) {
  EXPECT_THAT(foldedWords(""), IsEmpty());
  EXPECT_THAT(foldedWords(" *** - "), IsEmpty());
}

TEST(AName, SurvivesBytesThatAreNotUtf8) {
  EXPECT_THAT(foldedWords("Lidl \xFF"), ElementsAre("lidl"));
}

}  // namespace
}  // namespace kivo::names
