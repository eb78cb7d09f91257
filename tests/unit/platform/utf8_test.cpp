#include "platform/foundation/utf8.h"

#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

using namespace std::string_literals;

#define BROKEN "\uFFFD"

TEST(RepairedUtf8, LeavesValidTextUnchanged) {
  for (const auto& text : {""s, "plain"s, "نقدا é 💸 \U0010FFFF"s, "\uFFFD\uFEFF\uFFFE"s, "a\0b"s,
                           "\0"s, "\u0080\u07FF\u0800\uD7FF\uE000\U00010000"s}) {
    EXPECT_EQ(repairedUtf8(text), text);
  }
  const std::string large(300'000, 'x');
  EXPECT_TRUE(repairedUtf8(large) == large);
}

TEST(RepairedUtf8, HasOneReplacementForEachMaximalIllFormedPart) {
  EXPECT_EQ(repairedUtf8("\xFF"), BROKEN);
  EXPECT_EQ(repairedUtf8("a\x80\xBF"
                         "b"),
            "a" BROKEN BROKEN "b");
  // Sequences that break off count once, however long.
  EXPECT_EQ(repairedUtf8("\xC3"
                         "a"),
            BROKEN "a");
  EXPECT_EQ(repairedUtf8("\xE2\x82"
                         "a"),
            BROKEN "a");
  EXPECT_EQ(repairedUtf8("\xF0\x9F\x92"
                         "a"),
            BROKEN "a");
  EXPECT_EQ(repairedUtf8("\xF0\x9F\x92"), BROKEN);
  EXPECT_EQ(repairedUtf8("\xE2\x82\xE2\x82\xAC"), BROKEN "€");
  EXPECT_EQ(repairedUtf8("\xC3\xC3\xA9"), BROKEN "é");
  // Bytes that begin nothing valid count each: overlong forms, surrogates, beyond U+10FFFF.
  EXPECT_EQ(repairedUtf8("\xC0\xAF"), BROKEN BROKEN);
  EXPECT_EQ(repairedUtf8("\xE0\x80\xAF"), BROKEN BROKEN BROKEN);
  EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), BROKEN BROKEN BROKEN);
  EXPECT_EQ(repairedUtf8("\xF4\x90\x80\x80"), BROKEN BROKEN BROKEN BROKEN);
  EXPECT_EQ(repairedUtf8("\xF8\x88\x80\x80\x80"), BROKEN BROKEN BROKEN BROKEN BROKEN);
  // The example that the standard of the encoding explains the rule by.
  EXPECT_EQ(repairedUtf8("\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64"),
            "a" BROKEN BROKEN BROKEN "b" BROKEN "c" BROKEN BROKEN "d");
}

TEST(RepairedUtf8, KeepsNulsAmongInvalidBytes) {
  EXPECT_EQ(repairedUtf8("a\0\xFF\0b"s), "a\0" BROKEN "\0b"s);
}

TEST(RepairedUtf8, IsUnchangedByASecondRepair) {
  const std::string once = repairedUtf8("\xFF\xE2\x82 x \xED\xA0\x80");
  EXPECT_EQ(repairedUtf8(once), once);
}

}  // namespace
}  // namespace kivo::platform
