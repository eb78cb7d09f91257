#include "recognition/letters.h"

#include <string_view>

#include <gtest/gtest.h>

#include "names/name_fold.h"

namespace kivo::recognition {
namespace {

TEST(ALetter, IsOfAnyScript) {
  for (const std::string_view letter : {"a", "Z", "é", "ı", "ж", "م", "א", "ก", "店", "각"}) {
    EXPECT_TRUE(isLetter(letter)) << letter;
  }
}

TEST(ALetter, IsNoDigitMarkOrSign) {
  for (const std::string_view mark : {"1", " ", "-", "£", "×", "؋", "؛", "৳", "€", "。", "😀"}) {
    EXPECT_FALSE(isLetter(mark)) << mark;
  }
}

TEST(AWord, IsFoldedAsANameIs) {
  for (const std::string_view word :
       {"FERN", "Fern", "fern", "É", "Straße", "ŞOK", "مقهى", "Кафе"}) {
    EXPECT_EQ(folded(word), names::foldedName(word)) << word;
  }
}

}  // namespace
}  // namespace kivo::recognition
