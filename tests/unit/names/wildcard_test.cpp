#include "names/wildcard.h"

#include <gtest/gtest.h>

namespace kivo::names {
namespace {

TEST(TextsBetweenStars, AreTheWholeTextWithoutAStar) {
  EXPECT_TRUE(fitsBetweenStars({"cafe"}, "cafe"));
  EXPECT_FALSE(fitsBetweenStars({"cafe"}, "cafes"));
  EXPECT_FALSE(fitsBetweenStars({"cafe"}, "a cafe"));
  EXPECT_FALSE(fitsBetweenStars({"cafe"}, ""));
}

TEST(TextsBetweenStars, BeginAndEndTheText) {
  EXPECT_TRUE(fitsBetweenStars({"cafe", ""}, "cafe lune"));
  EXPECT_TRUE(fitsBetweenStars({"cafe", ""}, "cafe"));
  EXPECT_FALSE(fitsBetweenStars({"cafe", ""}, "a cafe"));
  EXPECT_TRUE(fitsBetweenStars({"", "lune"}, "cafe lune"));
  EXPECT_FALSE(fitsBetweenStars({"", "lune"}, "cafe lunes"));
}

TEST(TextsBetweenStars, DoNotOverlap) {
  EXPECT_FALSE(fitsBetweenStars({"aba", "aba"}, "aba"));
  EXPECT_FALSE(fitsBetweenStars({"aba", "aba"}, "ababa"));
  EXPECT_TRUE(fitsBetweenStars({"aba", "aba"}, "abaaba"));
  EXPECT_FALSE(fitsBetweenStars({"a", "b", "b"}, "ab"));
}

TEST(TextsBetweenStars, StandInTheirOrder) {
  EXPECT_TRUE(fitsBetweenStars({"a", "b", "c", "d"}, "a-b-c-d"));
  EXPECT_FALSE(fitsBetweenStars({"a", "c", "b", "d"}, "a-b-c-d"));
  EXPECT_TRUE(fitsBetweenStars({"a", "ab", "b"}, "aaabab"));
}

}  // namespace
}  // namespace kivo::names
