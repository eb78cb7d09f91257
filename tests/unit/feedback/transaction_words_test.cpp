#include "feedback/transaction_words.h"

#include <gtest/gtest.h>

#include "testkit/test_phone.h"

namespace kivo {
namespace {

class ATransaction : public ::testing::Test {
 protected:
  testkit::TestPhone phone_;
  SharedStore store_ = phone_.openStore();
  ToldTransaction spent_{MoneyFlow::spent, 150, "Carrefour", "Groceries"};
  ToldTransaction received_{MoneyFlow::received, 150, "Employer", "Salary"};
};

TEST_F(ATransaction, IsReceivedOnlyWithTheTypeIncome) {
  EXPECT_EQ(moneyFlow("income"), MoneyFlow::received);
  for (const auto* const type : {"expense", "transfer", "", "Income", "INCOME", "income ", "in"}) {
    EXPECT_EQ(moneyFlow(type), MoneyFlow::spent) << type;
  }
}

TEST_F(ATransaction, IsDescribedAsTrackedWhenSpent) {
  EXPECT_EQ(TransactionWords::notificationTitle(spent_), "💸 Expense Tracked");
  EXPECT_EQ(TransactionWords::notificationBody(store_, spent_),
            "EGP\u00a0150.00 at Carrefour (Groceries)");
  EXPECT_EQ(TransactionWords::dialog(store_, spent_), "Tracked EGP\u00a0150.00 at Carrefour");
}

TEST_F(ATransaction, IsDescribedAsIncomeWhenReceived) {
  EXPECT_EQ(TransactionWords::notificationTitle(received_), "💰 Income Received");
  EXPECT_EQ(TransactionWords::notificationBody(store_, received_),
            "EGP\u00a0150.00 from Employer (Salary)");
  EXPECT_EQ(TransactionWords::dialog(store_, received_), "Received EGP\u00a0150.00 from Employer");
}

TEST_F(ATransaction, IsDescribedWithTheTextsOfTheBackendUnchanged) {
  const ToldTransaction odd{MoneyFlow::spent, 1, " Café\n<b> ", ""};
  EXPECT_EQ(TransactionWords::notificationBody(store_, odd), "EGP\u00a01.00 at  Café\n<b>  ()");
  EXPECT_EQ(TransactionWords::dialog(store_, odd), "Tracked EGP\u00a01.00 at  Café\n<b> ");
}

TEST_F(ATransaction, IsDescribedWithoutTheSignOfANegativeAmount) {
  spent_.amount = -150;
  EXPECT_EQ(TransactionWords::dialog(store_, spent_), "Tracked EGP\u00a0150.00 at Carrefour");
}

}  // namespace
}  // namespace kivo
