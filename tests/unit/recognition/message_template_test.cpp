#include "recognition/templates/message_template.h"

#include <string>

#include <gtest/gtest.h>

namespace kivo::recognition {

using money::CurrencyCode;
using money::Kind;
using money::Money;

namespace {

MessageTemplate taught(const std::string& text, std::optional<Kind> kind = Kind::expense,
                       const std::optional<CurrencyCode>& currency = CurrencyCode("EGP")) {
  return {.text = text, .pattern = MessagePattern::parse(text), .kind = kind, .currency = currency};
}

Reading readBy(const MessageTemplate& one, const std::string& message,
               const CurrencyCode& book = "EGP") {
  return readWith({one}, message, book);
}

TEST(ATemplate, DecidesKindSumAndPayee) {
  const Reading reading = readBy(taught("Zap! {amount} flew to {payee} today"),
                                 "Zap! 1,150.50 flew to Nile Cinema today");
  EXPECT_EQ(reading.outcome, Outcome::transaction);
  EXPECT_EQ(reading.kind, Kind::expense);
  EXPECT_EQ(reading.amount, (Money{115050, "EGP"}));
  EXPECT_EQ(reading.payee, "Nile Cinema");
  EXPECT_EQ(reading.description, "Nile Cinema");
  EXPECT_EQ(reading.category, "Entertainment");
}

TEST(ATemplate, ReadsAsMuchOfAMessageAsTheRules) {
  const std::string front = "Zap! 5 flew to Nile Cinema ";
  const std::string filling(longestMessage - front.size() - 4, 'x');
  const MessageTemplate one = taught("Zap! {amount} flew to {payee} x{any} end");
  EXPECT_EQ(readBy(one, front + filling + " end").amount, (Money{500, "EGP"}));
  EXPECT_EQ(readBy(one, front + filling + "x end").outcome, Outcome::notATransaction);
  EXPECT_EQ(readBy(one, front + filling + " end of it").amount, (Money{500, "EGP"}));
}

TEST(ATemplate, LeavesMessagesThatDoNotFitToTheRules) {
  const std::string message = "Your card ending 4821 was charged EGP 150.00 at Carrefour City.";
  EXPECT_EQ(readBy(taught("Zap! {amount}"), message), read(message, "EGP"));
}

TEST(ATemplate, DecidesAlsoAgainstTheRules) {
  EXPECT_EQ(readBy(taught("Your card was charged EGP {any} at {any}", std::nullopt),
                   "Your card was charged EGP 150.00 at Carrefour"),
            Reading{});
  const Reading code =
      readBy(taught("Your OTP is {any} for {amount} EGP"), "Your OTP is 123456 for 5 EGP");
  EXPECT_EQ(code.outcome, Outcome::transaction);
  EXPECT_EQ(code.amount, (Money{500, "EGP"}));
  EXPECT_EQ(readBy(taught("Refund of EGP {amount} received"), "Refund of EGP 5.00 received").kind,
            Kind::expense);
}

TEST(ATemplate, TakesAccountReferenceAndBalanceFromTheRules) {
  const std::string message =
      "Your card ending 4821 was charged EGP 150.00 at Carrefour. Ref No 99812. Avl bal EGP 20.00";
  const Reading rules = read(message, "EGP");
  ASSERT_EQ(rules.account, "4821");
  ASSERT_NE(rules.reference, "");
  ASSERT_TRUE(rules.balance);
  const Reading reading = readBy(
      taught("Your card ending {any} was charged EGP {amount} at {payee}. Ref No {any}. {any}"),
      message);
  EXPECT_EQ(reading.account, rules.account);
  EXPECT_EQ(reading.reference, rules.reference);
  EXPECT_EQ(reading.balance, rules.balance);
}

TEST(ATemplate, TakesTheCategoryFromTheRulesForTheSamePayee) {
  const std::string message = "Salary of EGP 900.00 from Nile Works credited to account 4821";
  const auto categoryBy = [&message](const std::string& text) {
    return readBy(taught(text, Kind::income), message).category;
  };
  EXPECT_EQ(categoryBy("Salary of EGP {amount} from {payee} credited to {any}"), "Salary");
  EXPECT_EQ(categoryBy("Salary of EGP {amount} from Nile {payee} credited to {any}"), "Income");
}

TEST(ATemplate, LeavesASumInAForeignCurrencyToAPerson) {
  const MessageTemplate one = taught("Zap! {amount} USD gone", Kind::expense, CurrencyCode("USD"));
  const Reading reading = readBy(one, "Zap! 20 USD gone");
  EXPECT_EQ(reading.outcome, Outcome::needsReview);
  EXPECT_EQ(reading.amount, (Money{2000, "USD"}));
  EXPECT_EQ(readBy(one, "Zap! 20 USD gone", "USD").outcome, Outcome::transaction);
}

TEST(ATemplate, ReadsASumInTheBooksCurrencyWhenItNamesNone) {
  const MessageTemplate one = taught("Zap! {amount} gone", Kind::expense, std::nullopt);
  EXPECT_EQ(readBy(one, "Zap! 1.500 gone", "KWD").amount, (Money{1500, "KWD"}));
  EXPECT_EQ(readBy(one, "Zap! 1.500 gone", "IDR").amount, (Money{150000, "IDR"}));
}

TEST(ATemplate, LeavesDigitsThatCanBeReadInTwoWaysToAPerson) {
  const Reading reading = readBy(taught("Zap! {amount} gone"), "Zap! 5.250 gone");
  EXPECT_EQ(reading.outcome, Outcome::needsReview);
  EXPECT_EQ(reading.amount, std::nullopt);
}

TEST(ATemplate, LeavesSeveralPossibleSumsToAPerson) {
  const Reading reading = readBy(taught("Zap! {any} {amount} {any}"), "Zap! 1 2 3 4");
  EXPECT_EQ(reading.outcome, Outcome::needsReview);
  EXPECT_EQ(reading.amount, std::nullopt);
}

TEST(ATemplate, ReadsASumOfZeroAsNoPayment) {
  EXPECT_EQ(readBy(taught("Zap! {amount} gone"), "Zap! 0.00 gone"), Reading{});
}

TEST(ATemplate, DescribesAPaymentWithoutAPayee) {
  const auto described = [](Kind kind) {
    const Reading reading = readBy(taught("Zap! {amount}", kind), "Zap! 5");
    return reading.description + ", " + reading.category;
  };
  EXPECT_EQ(described(Kind::expense), "Payment, Other");
  EXPECT_EQ(described(Kind::income), "Deposit, Income");
  EXPECT_EQ(described(Kind::transfer), "Own transfer, Transfer");
}

TEST(ATemplate, GivesItsOwnDescriptionAndCategory) {
  MessageTemplate one = taught("Zap! {amount} to {payee} today");
  one.description = "Lightning";
  one.category = "Weather";
  const Reading reading = readBy(one, "Zap! 5 to Nile Cinema today");
  EXPECT_EQ(reading.payee, "Nile Cinema");
  EXPECT_EQ(reading.description, "Lightning");
  EXPECT_EQ(reading.category, "Weather");
}

TEST(ATemplate, DecidesBeforeEarlierOnes) {
  const std::vector<MessageTemplate> both{taught("Zap! {amount}", Kind::income),
                                          taught("Zap! {amount}", Kind::transfer)};
  EXPECT_EQ(readWith(both, "Zap! 5", "EGP").kind, Kind::transfer);
}

TEST(ATemplate, CutsALongPayee) {
  const Reading reading = readBy(taught("Zap! {amount} to {payee} today"),
                                 "Zap! 5 to " + std::string(500, 'a') + " today");
  EXPECT_EQ(reading.payee, std::string(60, 'a'));
}

}  // namespace
}  // namespace kivo::recognition
