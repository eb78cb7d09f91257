// Refunds, and the direction of transfers between a person's own accounts.
#include <gtest/gtest.h>

#include "recognition/reading.h"
#include "recognition/templates/message_template.h"

namespace kivo::recognition {
namespace {

using money::Kind;

Reading readIn(std::string_view text, const char* currency) {
  return read(text, money::CurrencyCode::fromText(currency).value());
}

TEST(AReading, IsARefundByTheWordsOfOne) {
  const Reading refund = readIn(
      "Refund of EGP 200.00 from TULIP STORE has been credited to your card ending 1234", "EGP");
  EXPECT_EQ(refund.kind, Kind::income);
  EXPECT_TRUE(refund.refund);
  EXPECT_TRUE(refund.incoming);
}

TEST(AReading, OfASalaryOrAPurchaseIsNoRefund) {
  const Reading salary =
      readIn("Salary of EGP 9,000.00 has been credited to your account 1234", "EGP");
  EXPECT_FALSE(salary.refund);
  EXPECT_TRUE(salary.incoming);
  const Reading purchase =
      readIn("EGP 150.00 was spent at TULIP STORE with your card ending 1234", "EGP");
  EXPECT_FALSE(purchase.refund);
  EXPECT_FALSE(purchase.incoming);
}

TEST(AReading, OfATransferComesInWhereTheMessageSaysReceived) {
  const Reading bill = readIn(
      "Payment of Rs 15,000.00 has been received towards your Axon Bank Credit Card XX1123", "INR");
  EXPECT_EQ(bill.kind, Kind::transfer);
  EXPECT_EQ(bill.account, "1123");
  EXPECT_TRUE(bill.incoming);
  EXPECT_TRUE(readIn("Payment of Rs 3,200.00 credited to your card ending 1234", "INR").incoming);
}

TEST(AReading, OfATransferGoesOutWhereTheMessageSaysDebited) {
  const Reading deposit =
      readIn("INR 25,000.00 debited from A/c XX4471 and credited to your Fixed Deposit A/c XX60012",
             "INR");
  EXPECT_EQ(deposit.kind, Kind::transfer);
  EXPECT_FALSE(deposit.incoming);
}

TEST(AReading, OfATransferGoesOutOfTheAccountBehindFrom) {
  const Reading bill = readIn(
      "AED 3,000.00 payment has been credited to your Falcon Gulf Credit Card ending 0917 "
      "from your account XX8801 on 02/03/2025",
      "AED");
  EXPECT_EQ(bill.account, "8801");
  EXPECT_FALSE(bill.incoming);
}

TEST(AReading, OfATransferGoesOutWhereTheMessageDoesNotSay) {
  const Reading moved = readIn("Transfer between own accounts AED 40.00", "AED");
  EXPECT_EQ(moved.kind, Kind::transfer);
  EXPECT_FALSE(moved.incoming);
}

TEST(AReading, ByAKindThatAPersonGivesKeepsTheDirectionOfItsMessage) {
  const Reading income = readIn("EGP 500.00 was credited to your account 1234", "EGP");
  ASSERT_TRUE(income.incoming);
  EXPECT_TRUE(readingAs(Kind::transfer, income.amount, "", income).incoming);
  EXPECT_FALSE(readingAs(Kind::expense, income.amount, "", income).incoming);
}

}  // namespace
}  // namespace kivo::recognition
