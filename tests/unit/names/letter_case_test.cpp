#include "names/letter_case.h"

#include <gtest/gtest.h>

namespace kivo::names {
namespace {

TEST(ALetter, HasACaseInScriptsWithCapitals) {
  EXPECT_EQ(caseOfFirst("Market"), LetterCase::capital);
  EXPECT_EQ(caseOfFirst("market"), LetterCase::small);
  EXPECT_EQ(caseOfFirst("Ромашка"), LetterCase::capital);
  EXPECT_EQ(caseOfFirst("қалдық"), LetterCase::small);
  EXPECT_EQ(caseOfFirst("Şeker"), LetterCase::capital);
}

TEST(ALetter, HasNoCaseInOtherScripts) {
  EXPECT_EQ(caseOfFirst("متجر"), LetterCase::none);
  EXPECT_EQ(caseOfFirst("松果"), LetterCase::none);
  EXPECT_EQ(caseOfFirst("5"), LetterCase::none);
  EXPECT_EQ(caseOfFirst("\xFF"), LetterCase::none);
  EXPECT_EQ(caseOfFirst(""), LetterCase::none);
}

}  // namespace
}  // namespace kivo::names
