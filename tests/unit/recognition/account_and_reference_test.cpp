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

}  // namespace
}  // namespace kivo::recognition
