#include "overview/year_summary.h"

#include <random>

#include <gmock/gmock.h>

#include "overview/month_summary.h"
#include "overview/summary_view.h"
#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

namespace kivo::overview {

using recording::LedgerTest;

using book::Book;
using money::Kind;
using money::largestSum;
using money::Money;
using money::Month;
using money::Year;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AYearSummary : public LedgerTest {
 protected:
  static constexpr Year year{2026};

  void booked(Book& book, const recognition::Reading& reading, const money::Day& date) {
    recorded(book, "KEY-" + std::to_string(++keys_), reading, date);
  }
  static recognition::Reading of(Kind kind, std::int64_t minorUnits) {
    recognition::Reading reading = spent(minorUnits);
    reading.kind = kind;
    return reading;
  }
  static recognition::Reading in(const std::string& category, std::int64_t minorUnits) {
    recognition::Reading reading = spent(minorUnits);
    reading.category = category;
    return reading;
  }
  static std::vector<std::int64_t> units(const std::vector<Money>& sums) {
    std::vector<std::int64_t> found;
    for (const Money& sum : sums) found.push_back(sum.minorUnits);
    return found;
  }
  // Books so many transactions of 2025 and 2026 as `chance` has it, some in another currency, and
  // some whose amounts no sum counts.
  void addRandom(std::mt19937& chance, int count) {
    const auto pick = [&chance](int most) {
      return std::uniform_int_distribution(0, most - 1)(chance);
    };
    const std::vector<std::string> kinds{"expense", "expense", "expense", "income", "transfer"};
    std::string rows;
    for (int at = 0; at < count; ++at) {
      const Month month = Month("2026-12").before(pick(24));
      const std::string day = std::to_string(100 + 1 + pick(month.days())).substr(1);
      const std::int64_t units = pick(50) == 0 ? largestSum * 3 : pick(10'000'000) - 5;
      rows += std::string(rows.empty() ? "" : ",") + "('user', 'R-" + std::to_string(++keys_) +
              "', '" + month.text() + "-" + day + "', '" +
              kinds.at(static_cast<std::size_t>(pick(5))) + "', " + std::to_string(units) + ", '" +
              (pick(6) == 0 ? "USD" : "EGP") + "', 'Shop " + std::to_string(pick(40)) + "', '" +
              (pick(2) == 0 ? "FOOD " : "Food ") + std::to_string(pick(9)) +
              "', '', '', '', '', 'booked', " + std::to_string(pick(2)) + ")";
    }
    raw("PRAGMA ignore_check_constraints = ON; INSERT INTO transactions (user, key, date, kind, "
        "minor_units, currency, description, category, payee, folded_payee, account, reference, "
        "state, refund) VALUES " +
        rows);
  }

  testkit::SetClock clock_{testkit::utc(2026, 11, 21, 12)};
  int keys_ = 0;
};

TEST_F(AYearSummary, CountsItsFirstAndLastDayAndThoseOfTheYearBefore) {
  Book book = open();
  booked(book, spent(1), "2024-12-31");
  booked(book, spent(20), "2025-01-01");
  booked(book, spent(300), "2025-12-31");
  booked(book, spent(4000), "2026-01-01");
  booked(book, spent(50000), "2026-12-31");
  booked(book, spent(600000), "2027-01-01");
  const YearSummary summary = summarize(book, year, "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 54000);
  EXPECT_EQ(summary.sums.transactions, 2);
  EXPECT_EQ(summary.previous.expense.minorUnits, 320);
  ASSERT_EQ(summary.months.size(), 12U);
  EXPECT_EQ(summary.months.front().month, Month("2026-01"));
  EXPECT_EQ(summary.months.front().sums.expense.minorUnits, 4000);
  EXPECT_EQ(summary.months.front().previous.minorUnits, 20);
  EXPECT_EQ(summary.months.back().sums.expense.minorUnits, 50000);
  EXPECT_EQ(summary.months.back().previous.minorUnits, 300);
}

TEST_F(AYearSummary, CountsTheLeapDay) {
  Book book = open();
  booked(book, spent(700), "2028-02-29");
  const YearSummary summary = summarize(book, Year(2028), "EGP");
  EXPECT_EQ(summary.months[1].sums.expense.minorUnits, 700);
  EXPECT_EQ(summarize(book, Year(2029), "EGP").months[1].previous.minorUnits, 700);
}

TEST_F(AYearSummary, SavesWhatWasReceivedLessWhatWasSpent) {
  Book book = open();
  booked(book, of(Kind::income, 500), "2026-02-01");
  booked(book, spent(2000), "2026-02-01");
  booked(book, of(Kind::transfer, 70000), "2026-02-01");
  booked(book, of(Kind::income, 90), "2025-03-01");
  const YearSummary summary = summarize(book, year, "EGP");
  EXPECT_EQ(summary.sums.saving().minorUnits, -1500);
  EXPECT_EQ(summary.months[1].sums.saving().minorUnits, -1500);
  EXPECT_EQ(summary.previous.saving().minorUnits, 90);
}

TEST_F(AYearSummary, HasEachCategoryByMonthBesideTheYearBefore) {
  Book book = open();
  booked(book, in("Food", 5), "2026-01-31");
  booked(book, in("FOOD", 70), "2026-12-01");
  booked(book, in("Rent", 900), "2025-06-01");
  booked(book, in("Rent", 1), "2026-06-01");
  const YearSummary summary = summarize(book, year, "EGP");
  ASSERT_EQ(summary.categories.size(), 2U);
  EXPECT_EQ(summary.categories[0].name, "Food");
  EXPECT_EQ(summary.categories[0].expense.minorUnits, 75);
  EXPECT_EQ(summary.categories[1].previous.minorUnits, 900);
  EXPECT_THAT(units(summary.categoryMonths[0]), ElementsAre(5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 70));
  EXPECT_THAT(units(summary.categoryMonths[1]), ElementsAre(0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0));
}

TEST_F(AYearSummary, HasTheBiggestPayeesBesideTheYearBefore) {
  Book book = open();
  booked(book, spent(5, "Uber"), "2025-01-31");
  booked(book, spent(5, "Metro"), "2026-01-31");
  booked(book, spent(60, "uber"), "2026-01-31");
  const YearSummary summary = summarize(book, year, "EGP");
  EXPECT_EQ(summary.payees[0].description, "uber");
  EXPECT_THAT(units(summary.payeesBefore), ElementsAre(5, 0));
}

TEST_F(AYearSummary, ShowsTheMonthsThatBeganAndLaterOnesWithTransactions) {
  Book book = open();
  EXPECT_EQ(summarize(book, year, "EGP").shownMonths, 11U);
  EXPECT_TRUE(summarize(book, year, "EGP").runs);
  EXPECT_EQ(summarize(book, Year(2025), "EGP").shownMonths, 12U);
  EXPECT_FALSE(summarize(book, Year(2025), "EGP").runs);
  booked(book, spent(5), "2026-12-24");
  EXPECT_EQ(summarize(book, year, "EGP").shownMonths, 12U);
}

TEST_F(AYearSummary, LeavesOutAndNamesAmountsThatAreOutOfRange) {
  Book book = open();
  for (int count = 0; count < 3; ++count) booked(book, spent(100), "2026-04-01");
  booked(book, spent(7), "2025-10-01");
  raw("PRAGMA ignore_check_constraints = ON;"
      "UPDATE transactions SET minor_units = 9223372036854775807 WHERE id IN (1, 4)");
  const YearSummary summary = summarize(book, year, "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 200);
  EXPECT_EQ(summary.months[3].sums.expense.minorUnits, 200);
  EXPECT_EQ(summary.categoryMonths[0][3].minorUnits, 200);
  EXPECT_THAT(summary.leftOut, ElementsAre(1, 4));
}

TEST_F(AYearSummary, KeepsOtherCurrenciesApart) {
  Book book = open();
  booked(book, spent(100), "2026-04-01");
  raw("UPDATE transactions SET currency = 'KWD'");
  booked(book, spent(7), "2026-04-01");
  const YearSummary summary = summarize(book, year, "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 7);
  EXPECT_EQ(summary.months[3].sums.transactions, 1);
  EXPECT_EQ(summary.categoryMonths[0][3].minorUnits, 7);
  ASSERT_EQ(summary.otherCurrencies.size(), 1U);
  EXPECT_EQ(summary.otherCurrencies[0].expense.minorUnits, 100);
}

TEST_F(AYearSummary, OfTheFirstYearThereIsHasNothingBeforeIt) {
  Book book = open();
  booked(book, spent(5), "0000-01-01");
  const YearSummary summary = summarize(book, Year(0), "EGP");
  EXPECT_EQ(summary.months[0].sums.expense.minorUnits, 5);
  EXPECT_EQ(summary.previous.transactions, 0);
}

TEST_F(AYearSummary, OfAnEmptyBookHasTwelveMonthsOfZeros) {
  const YearSummary summary = summarize(open(), year, "JPY");
  EXPECT_TRUE(summary.isEmpty());
  EXPECT_EQ(summary.months.size(), 12U);
  EXPECT_THAT(summary.categories, IsEmpty());
  const std::string json = SummaryView::json(summary).text();
  EXPECT_THAT(
      json,
      HasSubstr(R"({"year":"2026","currency":"JPY","expense":"0","refunded":"0","income":"0",)"
                R"("transfer":"0","saving":"0","transactions":"0")"));
}

TEST_F(AYearSummary, AgreesWithItsMonthsAndCategoriesInRandomBooks) {
  Book book = open();
  std::mt19937 chance(26);  // NOLINT: the same books in each run
  for (int round = 0; round < 12; ++round) {
    addRandom(chance, 60);
    const YearSummary summary = summarize(book, year, "EGP");
    MovedSums months("EGP");
    Money previous{0, "EGP"};
    std::vector<std::int64_t> ofMonths(12, 0);
    for (std::size_t at = 0; at < 12; ++at) {
      const auto& month = summary.months[at];
      months.expense += month.sums.expense;
      months.refunded += month.sums.refunded;
      months.income += month.sums.income;
      months.transfer += month.sums.transfer;
      months.transactions += month.sums.transactions;
      previous += month.previous;
      const MonthSummary alone = summarize(book, month.month, "EGP");
      EXPECT_EQ(alone.sums.expense, month.sums.expense);
      Money categories{0, "EGP"};
      for (const auto& category : alone.categories) categories += category.expense;
      EXPECT_EQ(categories, alone.sums.expense);
    }
    EXPECT_EQ(months.expense, summary.sums.expense);
    EXPECT_EQ(months.refunded, summary.sums.refunded);
    EXPECT_GT(months.refunded.minorUnits, 0);
    EXPECT_EQ(months.income, summary.sums.income);
    EXPECT_EQ(months.transfer, summary.sums.transfer);
    EXPECT_EQ(months.transactions, summary.sums.transactions);
    EXPECT_EQ(previous, summary.previous.expense);
    Money categories{0, "EGP"};
    Money before{0, "EGP"};
    for (std::size_t at = 0; at < summary.categories.size(); ++at) {
      categories += summary.categories[at].expense;
      before += summary.categories[at].previous;
      Money ofCategory{0, "EGP"};
      for (std::size_t month = 0; month < 12; ++month) {
        ofCategory += summary.categoryMonths[at][month];
        ofMonths[month] += summary.categoryMonths[at][month].minorUnits;
      }
      EXPECT_EQ(ofCategory, summary.categories[at].expense);
    }
    EXPECT_EQ(categories, summary.sums.expense);
    EXPECT_EQ(before, summary.previous.expense);
    for (std::size_t month = 0; month < 12; ++month) {
      EXPECT_EQ(ofMonths[month], summary.months[month].sums.expense.minorUnits);
    }
    EXPECT_FALSE(summary.otherCurrencies.empty());
    EXPECT_FALSE(summary.leftOut.empty());
  }
}

}  // namespace
}  // namespace kivo::overview
