#include <string_view>

#include <gtest/gtest.h>

#include "recognition/reading.h"
#include "recognition/templates/message_template.h"

// The banks, merchants and people below do not exist.

namespace kivo::recognition {

namespace {

// Whether `message` is not booked and holds a sum that a person may want to book.
bool holdsSum(std::string_view message) { return read(message, "EGP").holdsSum; }

TEST(AMessageThatIsNotBooked, HoldsItsSum) {
  EXPECT_TRUE(holdsSum("EGP 99.00 will be debited on 01/06/2026 for StreamNest."));
  EXPECT_TRUE(holdsSum("Zap! Tulip Bank moved 640.00 over to ALLIANZ"));
  EXPECT_TRUE(holdsSum("Your account balance as of 12/05/2026 is EGP 5,430.10"));
  EXPECT_TRUE(holdsSum("رصيد حسابك المتاح ٥٬٤٣٠٫١٠ ج.م"));
  EXPECT_TRUE(holdsSum("Enjoy 20% off when you spend USD 40 with your card!"));
}

TEST(AMessageThatIsNotBooked, HoldsTheSumOfADeclinedPayment) {
  const Reading reading =
      read("Your purchase of EGP 900.00 at Tulip Store was declined: insufficient funds.", "EGP");
  EXPECT_EQ(reading.outcome, Outcome::declined);
  EXPECT_TRUE(reading.holdsSum);
}

TEST(AMessageThatIsNotBooked, HoldsASumWhoseDigitsCanBeReadInTwoWays) {
  EXPECT_TRUE(holdsSum("Tulip Bank: your limit is now Rs. 5.250"));
  EXPECT_TRUE(holdsSum("Tulip Bank: your limit is now EGP 1,0000"));
}

TEST(AMessageThatIsNotBooked, HoldsNoSumInDatesCardsAndWords) {
  EXPECT_FALSE(holdsSum("Lunch at 1? I paid last time."));
  EXPECT_FALSE(holdsSum("Your card ending 4821 expires on 12/05/2026 at 14:32. Enjoy 20% off."));
  EXPECT_FALSE(holdsSum("Transaction rejected: card 4821 is blocked."));
  EXPECT_FALSE(holdsSum(""));
}

TEST(AMessageThatIsNotBooked, NeverHoldsTheSumBesideACode) {
  EXPECT_FALSE(
      holdsSum("Your OTP for the purchase of EGP 1,250.00 at Palm Electronics is 884213. "
               "Do not share it with anyone."));
  EXPECT_FALSE(holdsSum("551902 is your verification code for a payment of $40.00."));
  EXPECT_FALSE(
      holdsSum("رمز التحقق الخاص بك 4417 لعملية شراء بمبلغ 300 ج.م. لا تشارك الرمز مع أحد"));
}

TEST(AMessageThatIsNotBooked, HoldsNoSumWhenATemplateSaysThatItIsNoPayment) {
  const std::string_view pattern = "Tulip Bank: your limit is now EGP {any}";
  const MessageTemplate none{.text = std::string(pattern),
                             .pattern = MessagePattern::parse(pattern)};
  const std::string_view message = "Tulip Bank: your limit is now EGP 500.00";
  EXPECT_TRUE(readWith({}, message, "EGP").holdsSum);
  EXPECT_FALSE(readWith({none}, message, "EGP").holdsSum);
}

TEST(AMessageInTheBook, NeedsNoNoteOfItsSum) {
  EXPECT_FALSE(holdsSum("EGP 75.00 spent on your card *4821. Bal EGP 100.00"));
  EXPECT_FALSE(holdsSum("USD 75.00 spent on your card *4821. Bal EGP 100.00"));
}

}  // namespace
}  // namespace kivo::recognition
