#include "phone/ledger_month.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "testkit/private_folders.h"

namespace kivo {
namespace {

class ALedgerMonth : public testing::Test {
 protected:
  testkit::PrivateFolders folders_;
};

TEST_F(ALedgerMonth, HasTheExpensesInTheBooksCurrencyToTheCent) {
  const auto month = LedgerMonth::fromSummary(
      R"({"month":"2026-11","currency":"USD","expense":"90071992547409931.23","review":"2",)"
      R"("today":{"date":"2026-11-21","expense":"90071992547409930.01","expenses":"3"}})");
  EXPECT_EQ(month, (LedgerMonth{.expenses = "$90,071,992,547,409,931.23",
                                .todayTotal = "$90,071,992,547,409,930.01",
                                .todayCount = 3,
                                .toReview = 2}));
}

TEST_F(ALedgerMonth, KeepsTheDecimalsOfTheBook) {
  for (const auto& [currency, sum, shown] :
       {std::tuple("JPY", "1234", "¥1,234"), std::tuple("IQD", "1.235", "IQD\u00a01.235")}) {
    const auto month = LedgerMonth::fromSummary(
        std::string(R"({"currency":")") + currency + R"(","expense":")" + sum +
        R"(","review":"0","today":{"expense":")" + sum + R"(","expenses":"1"}})");
    ASSERT_TRUE(month);
    EXPECT_EQ(month->expenses, shown);
    EXPECT_EQ(month->todayTotal, shown);
  }
}

TEST_F(ALedgerMonth, IsBelowZeroWhenMoreWasRefundedThanSpent) {
  const auto month = LedgerMonth::fromSummary(
      R"({"currency":"USD","expense":"-50.00","refunded":"60.00","review":"0",)"
      R"("today":{"expense":"-5.00","refunded":"5.00","expenses":"0"}})");
  ASSERT_TRUE(month);
  EXPECT_EQ(month->expenses, "-$50.00");
  EXPECT_EQ(month->todayTotal, "-$5.00");
}

TEST_F(ALedgerMonth, IsAbsentFromAnythingElse) {
  for (
      const char* const summary :
      {"", "No transaction fits.", "[]", "{}", R"({"currency":"USD","expense":"1.00"})",
       R"({"currency":"USD","expense":1.0,"review":"2"})",
       R"({"currency":"USD","expense":"1.00","review":"2"})",
       R"({"currency":"USD","expense":"1.00","review":"many","today":{"expense":"1","expenses":"1"}})",
       R"({"currency":"USD","expense":"1.00","review":"2","today":{"expense":"1","expenses":"x"}})"}) {
    EXPECT_EQ(LedgerMonth::fromSummary(summary), std::nullopt) << summary;
  }
}

}  // namespace
}  // namespace kivo
