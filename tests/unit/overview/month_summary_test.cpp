#include "overview/month_summary.h"

#include <gmock/gmock.h>

#include "book/current_day.h"
#include "overview/summary_view.h"
#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

namespace kivo::overview {

using recording::LedgerTest;

using book::Book;
using book::currentMonth;
using money::Kind;
using money::largestSum;
using recognition::Outcome;
using recognition::Reading;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AMonthSummary : public LedgerTest {
 protected:
  // Books one more transaction.
  void booked(Book& book, const Reading& reading, const money::Day& date) {
    recorded(book, "KEY-" + std::to_string(++keys_), reading, date);
  }
  static Reading of(Kind kind, std::int64_t minorUnits) {
    Reading reading = spent(minorUnits);
    reading.kind = kind;
    return reading;
  }
  static Reading in(const std::string& category, std::int64_t minorUnits) {
    Reading reading = spent(minorUnits);
    reading.category = category;
    return reading;
  }
  // Books an expense in a currency that is not the book's, as a person does after a review.
  void bookedAbroad(Book& book, std::int64_t minorUnits, const money::CurrencyCode& currency,
                    const money::Day& date) {
    Reading reading = spent(minorUnits, "Airport", currency);
    reading.outcome = Outcome::needsReview;
    accept(book, recorded(book, "KEY-" + std::to_string(++keys_), reading, date).id);
  }
  static std::vector<std::string> names(const MonthSummary& summary) {
    std::vector<std::string> found;
    for (const auto& category : summary.categories) {
      found.push_back(category.name + " " + std::to_string(category.expense.minorUnits) + " " +
                      std::to_string(category.previous.minorUnits));
    }
    return found;
  }
  static std::vector<std::string> payees(const MonthSummary& summary) {
    std::vector<std::string> found;
    for (const auto& payee : summary.payees) {
      found.push_back(payee.description + " " + std::to_string(payee.expense.minorUnits) + " " +
                      std::to_string(payee.transactions));
    }
    return found;
  }

  // Sets the amounts of entries past the checks of the tables, as an older or damaged book has
  // them.
  void setUnits(const std::string& units, const std::string& ids) {
    testkit::RawStore(file()).run(
        "PRAGMA ignore_check_constraints = ON; UPDATE transactions SET minor_units = " + units +
        " WHERE id IN (" + ids + ")");
  }

  int keys_ = 0;
};

TEST_F(AMonthSummary, CountsTheFirstAndTheLastDayOfTheMonthAndOfTheOneBefore) {
  Book book = open();
  booked(book, spent(1), "2026-09-30");
  booked(book, spent(20), "2026-10-01");
  booked(book, spent(300), "2026-10-31");
  booked(book, spent(4000), "2026-11-01");
  booked(book, spent(50000), "2026-11-30");
  booked(book, spent(600000), "2026-12-01");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 54000);
  EXPECT_EQ(summary.sums.transactions, 2);
  EXPECT_EQ(summary.previous.expense.minorUnits, 320);
  EXPECT_EQ(summary.previous.transactions, 2);
}

TEST_F(AMonthSummary, ComparesJanuaryWithTheDecemberBefore) {
  Book book = open();
  booked(book, spent(700), "2025-12-31");
  EXPECT_EQ(summarize(book, "2026-01", "EGP").previous.expense.minorUnits, 700);
}

TEST_F(AMonthSummary, AddsCentsExactly) {
  Book book = open();
  for (int count = 0; count < 2; ++count) booked(book, spent(largestSum), "2026-11-01");
  for (int day = 0; day < 3; ++day) booked(book, spent(1), "2026-11-02");
  constexpr std::int64_t all = 18'014'398'509'481'987;  // no double holds it
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, all);
  EXPECT_EQ(summary.categories[0].expense.minorUnits, all);
  EXPECT_EQ(summary.payees[0].expense.minorUnits, all);
  EXPECT_THAT(summary.leftOut, IsEmpty());
}

TEST_F(AMonthSummary, LeavesOutAndNamesEntriesWhoseAmountsAreOutOfRange) {
  Book book = open();
  for (int count = 0; count < 5; ++count) booked(book, spent(100), "2026-11-01");
  booked(book, spent(7), "2026-10-01");
  setUnits("9223372036854775807", "1, 6");
  setUnits("-9223372036854775807 - 1", "2");
  setUnits("0", "3");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 200);
  EXPECT_EQ(summary.sums.transactions, 2);
  EXPECT_EQ(summary.previous.expense.minorUnits, 0);
  EXPECT_EQ(summary.categories[0].expense.minorUnits, 200);
  EXPECT_EQ(summary.payees[0].expense.minorUnits, 200);
  EXPECT_THAT(summary.leftOut, ElementsAre(1, 2, 3, 6));
  EXPECT_THAT(SummaryView::text(summary, "2026-12", {.width = 200}),
              HasSubstr("not above zero: 1, 2, 3, 6."));
  EXPECT_THAT(SummaryView::json(summary).text(), HasSubstr(R"("left_out":"1, 2, 3, 6")"));
}

TEST_F(AMonthSummary, LeavesOutTheLargestEntriesWhereAllExceedSixtyFourBits) {
  Book book = open();
  booked(book, spent(largestSum), "2026-11-01");
  testkit::RawStore raw(file());
  for (int doubling = 0; doubling < 10; ++doubling) {  // 1024 entries
    raw.run(
        "CREATE TEMP TABLE copies AS SELECT * FROM transactions;"
        "UPDATE copies SET id = NULL, key = key || '-' || " +
        std::to_string(doubling) +
        ";"
        "INSERT INTO transactions SELECT * FROM copies; DROP TABLE copies");
  }
  booked(book, spent(5), "2026-11-02");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 5);
  EXPECT_EQ(summary.leftOut.size(), 1024U);
  raw.run("UPDATE transactions SET minor_units = minor_units / 2 WHERE minor_units > 5");
  EXPECT_EQ(summarize(book, "2026-11", "EGP").sums.expense.minorUnits, largestSum / 2 * 1024 + 5);
}

TEST_F(AMonthSummary, KeepsTransfersApartFromIncomeAndExpense) {
  Book book = open();
  booked(book, of(Kind::expense, 100), "2026-11-02");
  booked(book, of(Kind::income, 2000), "2026-11-02");
  booked(book, of(Kind::transfer, 30000), "2026-11-02");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 100);
  EXPECT_EQ(summary.sums.income.minorUnits, 2000);
  EXPECT_EQ(summary.sums.transfer.minorUnits, 30000);
  EXPECT_EQ(summary.sums.transactions, 3);
  EXPECT_THAT(names(summary), ElementsAre("Groceries 100 0"));
  EXPECT_THAT(payees(summary), ElementsAre("Sunny Market 100 1"));
}

TEST_F(AMonthSummary, NeverAddsSumsOfDifferentCurrencies) {
  Book book = open();
  booked(book, spent(100), "2026-11-02");
  bookedAbroad(book, 2000, "USD", "2026-11-03");
  bookedAbroad(book, 3000, "KWD", "2026-11-04");
  bookedAbroad(book, 4000, "JPY", "2026-10-04");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.sums.expense.minorUnits, 100);
  EXPECT_EQ(summary.sums.transactions, 1);
  EXPECT_EQ(summary.previous.expense.minorUnits, 0);
  ASSERT_EQ(summary.otherCurrencies.size(), 2U);
  EXPECT_EQ(summary.otherCurrencies[0].expense.currency, money::CurrencyCode("KWD"));
  EXPECT_EQ(summary.otherCurrencies[0].expense.minorUnits, 3000);
  EXPECT_EQ(summary.otherCurrencies[1].expense.currency, money::CurrencyCode("USD"));
  EXPECT_THAT(names(summary), ElementsAre("Groceries 100 0"));
}

TEST_F(AMonthSummary, OrdersCategoriesByTheirExpenses) {
  Book book = open();
  booked(book, in("Rent", 500), "2026-10-02");
  booked(book, in("Health", 700), "2026-10-02");
  booked(book, in("Transport", 100), "2026-11-02");
  booked(book, in("Groceries", 300), "2026-11-02");
  booked(book, in("Groceries", 9), "2026-10-02");
  EXPECT_THAT(names(summarize(book, "2026-11", "EGP")),
              ElementsAre("Groceries 300 9", "Transport 100 0", "Health 0 700", "Rent 0 500"));
}

TEST_F(AMonthSummary, TakesNamesThatDifferInCaseAloneAsOne) {
  Book book = open();
  booked(book, in("Eating out", 100), "2026-11-02");
  booked(book, in("EATING OUT", 20), "2026-11-02");
  booked(book, in("eating out", 3), "2026-10-02");
  EXPECT_THAT(names(summarize(book, "2026-11", "EGP")), ElementsAre("Eating out 120 3"));
}

TEST_F(AMonthSummary, HasTheTenBiggestPayees) {
  Book book = open();
  for (int number = 10; number < 22; ++number) {
    booked(book, spent(number, "Shop " + std::to_string(number)), "2026-11-02");
  }
  booked(book, spent(90, "Shop 10"), "2026-11-03");
  const auto found = payees(summarize(book, "2026-11", "EGP"));
  ASSERT_EQ(found.size(), 10U);
  EXPECT_EQ(found.front(), "Shop 10 100 2");
  EXPECT_EQ(found[1], "Shop 21 21 1");
  EXPECT_EQ(found.back(), "Shop 13 13 1");
}

TEST_F(AMonthSummary, CountsReviewsOfEveryMonthAndAddsNoneOfThem) {
  Book book = open();
  Reading unclear = spent(100);
  unclear.outcome = Outcome::needsReview;
  recorded(book, "A", unclear, "2026-11-02");
  recorded(book, "B", unclear, "2026-03-02");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_EQ(summary.review, 2);
  EXPECT_TRUE(summary.isEmpty());
  EXPECT_THAT(summary.categories, IsEmpty());
}

TEST_F(AMonthSummary, CountsIgnoredMessagesOfTheLastThirtyDays) {
  const testkit::SetClock clock(testkit::utc(2026, 11, 22, 12));
  Book book = open();
  reading_ = {.outcome = Outcome::notATransaction, .holdsSum = true};
  record(book, message("KEY-1", "2026-10-23"));
  record(book, message("KEY-2", "2026-11-22"));
  record(book, message("KEY-3", "2026-10-22"));
  const MonthSummary summary = summarize(book, "2026-01", "EGP");
  EXPECT_EQ(summary.ignored, 2);
  EXPECT_TRUE(summary.isEmpty());
}

TEST_F(AMonthSummary, HasTodaysExpensesInTheCurrentMonthAlone) {
  const testkit::SetClock clock(testkit::utc(2026, 11, 21, 12));
  Book book = open();
  booked(book, spent(100), "2026-11-20");
  booked(book, spent(2000), "2026-11-21");
  booked(book, spent(30000, "Moon Café"), "2026-11-21");
  booked(book, of(Kind::income, 7), "2026-11-21");
  bookedAbroad(book, 5, "KWD", "2026-11-21");
  const MonthSummary summary = summarize(book, "2026-11", "EGP");
  EXPECT_THAT(
      SummaryView::json(summary).text(),
      testing::HasSubstr(
          R"("today":{"date":"2026-11-21","expense":"320.00","refunded":"0.00","expenses":"2"})"));
  EXPECT_FALSE(summarize(book, "2026-10", "EGP").today);
}

TEST_F(AMonthSummary, HasExpensesLessTheirRefunds) {
  const testkit::SetClock clock(testkit::utc(2026, 11, 21, 12));
  Book book = open();
  booked(book, in("Groceries", 100000), "2026-11-20");
  booked(book, in("Dining", 5000), "2026-11-20");
  Reading refund = of(Kind::income, 20000);
  refund.refund = true;
  booked(book, refund, "2026-11-21");
  const std::string json = SummaryView::json(summarize(book, "2026-11", "EGP")).text();
  EXPECT_THAT(json, HasSubstr(R"("expense":"850.00","refunded":"200.00","income":"0.00")"));
  EXPECT_THAT(json, HasSubstr(R"("category":"Groceries","expense":"800.00","refunded":"200.00")"));
  EXPECT_THAT(json, HasSubstr(R"("expense":"850.00","refunded":"200.00","transactions":"3")"));
  EXPECT_THAT(json, HasSubstr(R"("date":"2026-11-21","expense":"-200.00","refunded":"200.00",)"
                              R"("expenses":"0")"));
}

TEST_F(AMonthSummary, IsJsonWithPlainDecimals) {
  const testkit::SetClock clock(testkit::utc(2026, 12, 1));
  Book book = open();
  booked(book, spent(12345), "2026-11-02");
  booked(book, of(Kind::income, 5), "2026-11-02");
  booked(book, spent(700), "2026-10-02");
  bookedAbroad(book, 5, "KWD", "2026-11-03");
  EXPECT_EQ(
      SummaryView::json(summarize(book, "2026-11", "EGP")).text(),
      R"({"month":"2026-11","currency":"EGP","expense":"123.45","refunded":"0.00","income":"0.05",)"
      R"("transfer":"0.00","transactions":"2","review":"0","ignored":"0","previous":)"
      R"({"month":"2026-10","expense":"7.00","refunded":"0.00","income":"0.00","transfer":"0.00",)"
      R"("transactions":"1"},"categories":[{"category":"Groceries","expense":"123.45",)"
      R"("refunded":"0.00","previous":"7.00"}],"payees":[{"description":"Sunny Market",)"
      R"("expense":"123.45","refunded":"0.00","transactions":"1"}],"other_currencies":[)"
      R"({"currency":"KWD","expense":"0.005","refunded":"0.000","income":"0.000",)"
      R"("transfer":"0.000"}],"left_out":"","budgets":[]})");
}

TEST_F(AMonthSummary, OfAnEmptyBookIsJsonWithZeros) {
  EXPECT_EQ(
      SummaryView::json(summarize(open(), "2026-01", "JPY")).text(),
      R"({"month":"2026-01","currency":"JPY","expense":"0","refunded":"0","income":"0",)"
      R"("transfer":"0","transactions":"0","review":"0","ignored":"0","previous":)"
      R"({"month":"2025-12","expense":"0","refunded":"0","income":"0","transfer":"0",)"
      R"("transactions":"0"},"categories":[],"payees":[],"other_currencies":[],"left_out":"","budgets":[]})");
}

TEST(TheCurrentMonth, IsThatOfTheDevicesTimeZone) {
  const testkit::SetClock clock(testkit::utc(2026, 10, 31, 23));
  const testkit::PrivateFolders folders;
  EXPECT_EQ(currentMonth(), money::Month("2026-10"));
  const testkit::ScopedVariable cairo("TZ", "EET-2");
  EXPECT_EQ(currentMonth(), money::Month("2026-11"));
}

TEST(TheCurrentMonth, HasWesternDigitsInEachLocale) {
  const testkit::SetClock clock(testkit::utc(2026, 11, 1));
  const testkit::PrivateFolders folders;
  const testkit::ScopedVariable thai("LC_ALL", "fa_IR.UTF-8");
  EXPECT_EQ(currentMonth(), money::Month("2026-11"));
}

}  // namespace
}  // namespace kivo::overview
