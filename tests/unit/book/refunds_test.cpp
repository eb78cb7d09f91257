// Refunds, which lessen what was spent.
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "unit/recording/ledger_test.h"

namespace kivo::book {

using money::Kind;
using money::Period;
using recognition::Reading;
using recording::LedgerTest;

namespace {

using testing::UnorderedElementsAre;

class ABookedRefund : public LedgerTest {
 protected:
  static Reading refund(std::int64_t minorUnits, const std::string& payee = "Zubeno") {
    Reading reading = spent(minorUnits, payee);
    reading.kind = Kind::income;
    reading.refund = true;
    reading.category = "Refund";
    return reading;
  }
  static Reading bought(std::int64_t minorUnits, const std::string& category,
                        const std::string& payee = "Zubeno") {
    Reading reading = spent(minorUnits, payee);
    reading.category = category;
    return reading;
  }
  LedgerEntry add(const Reading& reading, const money::Day& date = "2026-11-21") {
    return recorded(book_, "KEY-" + std::to_string(++keys_), reading, date);
  }
  // Such as "expense Dining 800 (200 in 1)": the groups of a month by category.
  [[nodiscard]] std::vector<std::string> sums(const money::Month& month = "2026-11") const {
    std::vector<std::string> found;
    for (const auto& group :
         book_.sumsByName(Names::category, Period::of(month), money::largestSum)) {
      found.push_back(std::string(kindText(group.kind)) + " " + group.group.name + " " +
                      std::to_string(group.sum.minorUnits) + " (" +
                      std::to_string(group.refunded.minorUnits) + " in " +
                      std::to_string(group.refunds) + ")");
    }
    return found;
  }

  Book book_ = open();
  int keys_ = 0;
};

TEST_F(ABookedRefund, LessensItsCategoryInTheMonthInWhichItArrives) {
  add(bought(100000, "Dining"), "2026-10-30");
  add(bought(100000, "Dining"), "2026-11-02");
  add(refund(20000), "2026-11-03");
  EXPECT_THAT(sums(), UnorderedElementsAre("expense Dining 80000 (20000 in 1)"));
  EXPECT_THAT(sums("2026-10"), UnorderedElementsAre("expense Dining 100000 (0 in 0)"));
}

TEST_F(ABookedRefund, MayExceedWhatWasSpent) {
  add(bought(100, "Dining"), "2026-10-30");
  add(refund(20000), "2026-11-03");
  EXPECT_THAT(sums(), UnorderedElementsAre("expense Dining -20000 (20000 in 1)"));
}

TEST_F(ABookedRefund, IsOfTheCategoryOfTheLastPaymentBeforeIt) {
  add(bought(100, "Dining"), "2026-11-01");
  add(bought(100, "Treats"), "2026-11-03");
  add(bought(100, "Gifts"), "2026-11-09");
  add(bought(100, "Other", "Another"), "2026-11-03");
  EXPECT_EQ(add(refund(50), "2026-11-05").category, "Treats");
  EXPECT_EQ(add(refund(50, "Unknown"), "2026-11-05").category, "Refund");
}

TEST_F(ABookedRefund, IsOfTheCategoryOfItsShop) {
  add(bought(100, "Treats", "Carrefour"), "2026-11-01");
  EXPECT_EQ(add(refund(50, "Carrefour")).category, "Groceries");
}

TEST_F(ABookedRefund, IsOfTheCategoryOfARule) {
  add(bought(100, "Dining"), "2026-11-01");
  book_.keepRule("Zubeno", {.category = "Fun"});
  EXPECT_EQ(add(refund(50)).category, "Fun");
}

TEST_F(ABookedRefund, IsMadeOfAnIncomeByAPerson) {
  add(bought(100, "Dining"), "2026-11-01");
  Reading income = refund(50);
  income.refund = false;
  income.category = "Income";
  const auto id = add(income).id;
  EXPECT_THAT(sums(),
              UnorderedElementsAre("expense Dining 100 (0 in 0)", "income Income 50 (0 in 0)"));
  UserCommand command{.words = "edit"};
  book_.asCommand(command, [&] { ASSERT_TRUE(book_.edit(id, {.refund = true})); });
  EXPECT_THAT(sums(), UnorderedElementsAre("expense Dining 50 (50 in 1)"));
  ASSERT_TRUE(book_.edit(id, {.refund = false, .category = "Income"}));
  EXPECT_THAT(sums(),
              UnorderedElementsAre("expense Dining 100 (0 in 0)", "income Income 50 (0 in 0)"));
  book_.undo(1);
  EXPECT_FALSE(book_.entry(id)->refund);
  EXPECT_EQ(book_.entry(id)->category, "Income");
}

TEST_F(ABookedRefund, KeepsTheCategoryThatIsGivenWithIt) {
  Reading income = refund(50);
  income.refund = false;
  const auto id = add(income).id;
  ASSERT_TRUE(book_.edit(id, {.refund = true, .category = "Fun"}));
  EXPECT_EQ(book_.entry(id)->category, "Fun");
}

TEST_F(ABookedRefund, IsAnIncomeAlone) {
  const auto id = add(bought(100, "Dining")).id;
  ASSERT_TRUE(book_.edit(id, {.refund = true}));
  EXPECT_FALSE(book_.entry(id)->refund);
}

}  // namespace
}  // namespace kivo::book
