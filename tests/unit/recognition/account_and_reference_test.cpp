#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "recognition/reading.h"

// The digits and the reference that a message shows. The merchants and people do not exist.

namespace kivo::recognition {
namespace {

TEST(AReference, IsBehindTheFirstOfItsWordsThatHasDigits) {
  EXPECT_EQ(read("You paid EGP 50.00 to Tulip Store. Ref pending. Ref No 99812", "EGP").reference,
            "99812");
}

TEST(AnAccount, IsBehindTheFirstOfItsWordsThatHasDigits) {
  EXPECT_EQ(read("Card purchase of EGP 50.00 at Metro, account 4821", "EGP").account, "4821");
  EXPECT_EQ(read("Your card was used: EGP 50.00 at Metro, account 4821", "EGP").account, "4821");
}

TEST(AnAccount, IsItsLastDigits) {
  EXPECT_EQ(read("EGP 50.00 debited from account 1***2222", "EGP").account, "2222");
  EXPECT_EQ(read("EGP 50.00 debited from account 123456789", "EGP").account, "456789");
  EXPECT_EQ(read("EGP 50.00 debited x123456789", "EGP").account, "456789");
}

TEST(AnAccount, IsThePayeesOnlyWhereNoOtherIsShown) {
  EXPECT_EQ(read("EGP 50.00 sent to account 9901 by card 4821", "EGP").account, "4821");
  EXPECT_EQ(read("EGP 50.00 sent to account 9901", "EGP").account, "9901");
}

std::string accountOf(std::string_view message) { return read(message, "EGP").account; }

TEST(AnAccount, IsBehindMasksAndLinkingWords) {
  EXPECT_EQ(accountOf("EGP 50.00 debited from account No. 4821"), "4821");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account ending in 4821"), "4821");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account ...(-:*#4821"), "4821");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account x 1-4821"), "4821");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account / 4821"), "");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account Savings 4821"), "");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account 4821,99"), "");
  EXPECT_EQ(accountOf("EGP 50.00 debited from your account. 4821 is new"), "");
}

TEST(AnAccount, HasTwoDigits) {
  EXPECT_EQ(accountOf("EGP 50.00 debited from account 12"), "12");
  EXPECT_EQ(accountOf("EGP 50.00 debited from account 1"), "");
}

TEST(AnAccount, IsOnThePersonsSide) {
  EXPECT_EQ(accountOf("EGP 50.00 debited to account 7777 from account 4821"), "4821");
  EXPECT_EQ(accountOf("EGP 50.00 credited from account 4821 to account 7777"), "7777");
  EXPECT_EQ(accountOf("EGP 50.00 credited from account 4821 in account 7777"), "7777");
  EXPECT_EQ(accountOf("EGP 50.00 credited from account 4821 into account 7777"), "7777");
  EXPECT_EQ(accountOf("EGP 50.00 credited from account 4821, account 7777"), "7777");
  EXPECT_EQ(accountOf("EGP 50.00 spent, card 9911 your card 4821"), "4821");
  EXPECT_EQ(accountOf("EGP 50.00 spent, card 9911 using card 4821"), "4821");
}

TEST(AnAccount, MayBeAMaskedNumberWithoutAWord) {
  EXPECT_EQ(accountOf("x7477 EGP 50.00 debited"), "7477");
  EXPECT_EQ(accountOf("EGP 50.00 debited *7477"), "7477");
  EXPECT_EQ(accountOf("EGP 50.00 debited * 7477"), "");
  EXPECT_EQ(accountOf("EGP 50.00 debited -7477"), "");
  EXPECT_EQ(accountOf("EGP 50.00 debited (7477)"), "");
}

TEST(AReference, IsAWordWithADigit) {
  const auto referenceOf = [](const std::string& reference) {
    return read("EGP 50.00 spent at Metro Ref No" + reference, "EGP").reference;
  };
  EXPECT_EQ(referenceOf(": 12AB34"), "12AB34");
  EXPECT_EQ(referenceOf(": AB12-34"), "AB12");
  EXPECT_EQ(referenceOf(" is AB12 34"), "AB12");
  EXPECT_EQ(referenceOf(": ABCD"), "");
  EXPECT_EQ(referenceOf("."), "");
  EXPECT_EQ(referenceOf("\n1234"), "");
  EXPECT_EQ(referenceOf(": " + std::string(40, '1')), std::string(40, '1'));
  EXPECT_EQ(referenceOf(": " + std::string(41, '1')), "");
}

}  // namespace
}  // namespace kivo::recognition
