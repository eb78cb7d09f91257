#include "sms_watcher/sender_pattern.h"

#include <gtest/gtest.h>

#include "platform/linux/foundation/failure.h"

namespace kivo {
namespace {

using SenderPattern::check;
using SenderPattern::means;

TEST(ASenderPattern, MatchesTheWholeSenderExactly) {
  EXPECT_TRUE(means("MyBank", "MyBank"));
  EXPECT_FALSE(means("MyBank", "MyBanker"));
  EXPECT_FALSE(means("MyBank", "AMyBank"));
  EXPECT_FALSE(means("MyBank", "MyBan"));
  EXPECT_FALSE(means("MyBank", ""));
}

TEST(ASenderPattern, IsCaseSensitive) {
  EXPECT_FALSE(means("MyBank", "MYBANK"));
  EXPECT_FALSE(means("MyBank", "mybank"));
}

TEST(ASenderPattern, IgnoresSurroundingBlanks) {
  EXPECT_TRUE(means("  MyBank\t", "MyBank"));
  EXPECT_TRUE(means("MyBank", " MyBank\u00A0"));
  EXPECT_FALSE(means("My Bank", "MyBank"));
}

TEST(ASenderPattern, MatchesAnyCharactersAtAStar) {
  EXPECT_TRUE(means("My*", "My"));
  EXPECT_TRUE(means("My*", "MyBank"));
  EXPECT_TRUE(means("*Bank", "MyBank"));
  EXPECT_TRUE(means("*Ba*k*", "AD-MyBank-S"));
  EXPECT_TRUE(means("**Bank**", "Bank"));
  EXPECT_TRUE(means("a*ab", "aaab"));
  EXPECT_TRUE(means("بنك*", "بنك نيلو"));
  EXPECT_FALSE(means("My*", "AMyBank"));
  EXPECT_FALSE(means("*Bank", "MyBanks"));
  EXPECT_FALSE(means("a*b*c", "acb"));
}

TEST(ASenderPattern, HasNoOtherSpecialCharacter) {
  EXPECT_FALSE(means("My?ank", "MyBank"));
  EXPECT_FALSE(means("My.ank", "MyBank"));
  EXPECT_FALSE(means("[M]yBank", "MyBank"));
  EXPECT_TRUE(means("A.B?[C]", "A.B?[C]"));
}

TEST(ASenderPattern, IgnoresSeparatorsInAPhoneNumber) {
  EXPECT_TRUE(means("+20 (100) 123-45.67", "+201001234567"));
  EXPECT_TRUE(means("+201001234567", "+20 100 123 4567"));
  EXPECT_TRUE(means("00201001234567", "+201001234567"));
  EXPECT_TRUE(means("+20 100*", "00201001234567"));
}

TEST(ASenderPattern, DistinguishesLocalAndInternationalNumbers) {
  EXPECT_FALSE(means("01001234567", "+201001234567"));
  EXPECT_FALSE(means("201001234567", "+201001234567"));
  EXPECT_TRUE(means("*1001234567", "+201001234567"));
}

TEST(ASenderPattern, ComparesPunctuationInANameWithDigits) {
  EXPECT_FALSE(means("Bank-24", "Bank24"));
  EXPECT_FALSE(means("00Bank", "+Bank"));
}

TEST(ASenderPattern, IsRefusedWhenEmptyOrOnlyStars) {
  for (const char* const pattern : {"", " ", "*", "**", " * "}) {
    EXPECT_THROW(check(pattern), linux_platform::Failure) << pattern;
    EXPECT_FALSE(means(pattern, "MyBank")) << pattern;
    EXPECT_FALSE(means(pattern, "")) << pattern;
  }
  EXPECT_NO_THROW(check("A*"));
}

TEST(ASenderPattern, MatchesQuicklyWithManyStars) {
  std::string pattern;
  for (int i = 0; i < 2000; ++i) pattern += "*a";
  EXPECT_FALSE(means(pattern + "b", std::string(4000, 'a')));
}

}  // namespace
}  // namespace kivo
