#include "overview/recurring_payments.h"

#include <sstream>

#include <gmock/gmock.h>

#include "overview/recurring_view.h"
#include "platform/linux/terminal/text_columns.h"
#include "unit/recording/ledger_test.h"

namespace kivo::overview {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RecurringPayments : public recording::LedgerTest {
 protected:
  using Book = book::Book;
  using Day = money::Day;

  void booked(Book& book, const std::string& payee, std::int64_t minorUnits,
              const std::vector<Day>& dates) {
    for (const Day& date : dates) {
      recorded(book, "KEY-" + std::to_string(++keys_), spent(minorUnits, payee), date);
    }
  }
  // Each as "description amount last next times".
  static std::vector<std::string> found(const Book& book, const Day& today = "2026-11-21") {
    std::vector<std::string> lines;
    for (const RecurringPayment& one : recurringPayments(book, today)) {
      lines.push_back(one.description + " " + std::to_string(one.amount.minorUnits) + " " +
                      one.last.text() + " " + one.next.text() + " " + std::to_string(one.times));
    }
    return lines;
  }
  static RecurringPayment due(const Day& next) {
    return {.description = "Rent",
            .category = "Home",
            .amount = {650000, "EGP"},
            .last = "2026-10-01",
            .next = next,
            .times = 3};
  }

  int keys_ = 0;
};

TEST_F(RecurringPayments, AreThoseThatCameThreeMonthsInARow) {
  Book book = open();
  booked(book, "Rent", 650000, {"2026-09-01", "2026-10-01", "2026-11-01"});
  booked(book, "Gym", 30000, {"2026-10-05", "2026-11-05"});
  EXPECT_THAT(found(book), ElementsAre("Rent 650000 2026-11-01 2026-12-01 3"));
}

TEST_F(RecurringPayments, MayComeThreeDaysEarlyOrLate) {
  Book book = open();
  booked(book, "Rent", 100, {"2026-08-31", "2026-09-28", "2026-10-31"});
  booked(book, "Gym", 100, {"2026-09-10", "2026-10-10", "2026-11-14"});
  booked(book, "Club", 100, {"2026-09-10", "2026-10-10", "2026-11-06"});
  EXPECT_THAT(found(book), ElementsAre("Rent 100 2026-10-31 2026-11-30 3"));
}

TEST_F(RecurringPayments, RespectTheEndsOfMonthsAndLeapDays) {
  Book book = open();
  booked(book, "Rent", 100, {"2027-12-31", "2028-01-31", "2028-02-29"});
  EXPECT_THAT(found(book, "2028-03-02"), ElementsAre("Rent 100 2028-02-29 2028-03-31 3"));
  booked(book, "Rent", 100, {"2028-03-31", "2028-04-30"});
  EXPECT_THAT(found(book, "2028-05-02"), ElementsAre("Rent 100 2028-04-30 2028-05-31 5"));
}

TEST_F(RecurringPayments, HaveSumsWithinAFifthOfEachOther) {
  Book book = open();
  booked(book, "Power", 8000, {"2026-09-01"});
  booked(book, "Power", 9000, {"2026-10-01"});
  booked(book, "Power", 10000, {"2026-11-01"});
  booked(book, "Water", 7999, {"2026-09-02"});
  booked(book, "Water", 9000, {"2026-10-02"});
  booked(book, "Water", 10000, {"2026-11-02"});
  EXPECT_THAT(found(book), ElementsAre("Power 10000 2026-11-01 2026-12-01 3"));
}

TEST_F(RecurringPayments, MayHaveOtherPaymentsToThePayeeBetweenThem) {
  Book book = open();
  booked(book, "Gym", 30000, {"2026-09-05", "2026-10-05", "2026-11-05"});
  booked(book, "Gym", 2500, {"2026-09-20", "2026-11-10", "2026-11-11"});
  EXPECT_THAT(found(book), ElementsAre("Gym 30000 2026-11-05 2026-12-05 3"));
}

TEST_F(RecurringPayments, AreNotThoseThatComeMoreOften) {
  Book book = open();
  booked(book, "Metro", 1000,
         {"2026-09-01", "2026-09-15", "2026-10-01", "2026-10-15", "2026-11-01", "2026-11-15"});
  EXPECT_THAT(found(book), IsEmpty());
}

TEST_F(RecurringPayments, AreOverAMonthAfterTheyWereDue) {
  Book book = open();
  booked(book, "Gym", 100, {"2026-07-21", "2026-08-21", "2026-09-21"});
  EXPECT_THAT(found(book, "2026-11-21"), ElementsAre("Gym 100 2026-09-21 2026-10-21 3"));
  EXPECT_THAT(found(book, "2026-11-22"), IsEmpty());
}

TEST_F(RecurringPayments, KnowAPayeeInAnySpelling) {
  Book book = open();
  booked(book, "Café Rio", 100, {"2026-09-01"});
  booked(book, "CAFE RIO", 100, {"2026-10-01"});
  booked(book, "Cafe  Rio", 100, {"2026-11-01"});
  EXPECT_THAT(found(book), ElementsAre("Cafe  Rio 100 2026-11-01 2026-12-01 3"));
}

TEST_F(RecurringPayments, GoByTheDescriptionWithoutAPayee) {
  Book book = open();
  booked(book, "", 100, {"2026-09-01", "2026-10-01", "2026-11-01"});
  EXPECT_THAT(found(book), IsEmpty());
  raw("UPDATE transactions SET description = 'Rent'");
  EXPECT_THAT(found(book), ElementsAre("Rent 100 2026-11-01 2026-12-01 3"));
}

TEST_F(RecurringPayments, AreExpensesInOneCurrency) {
  Book book = open();
  booked(book, "Salary", 100, {"2026-09-01", "2026-10-01", "2026-11-01"});
  raw("UPDATE transactions SET kind = 'income'");
  booked(book, "Rent", 100, {"2026-09-01", "2026-10-01", "2026-11-01"});
  EXPECT_EQ(found(book).size(), 1U);
  raw("UPDATE transactions SET currency = 'USD' WHERE date = '2026-10-01'");
  EXPECT_THAT(found(book), IsEmpty());
}

TEST_F(RecurringPayments, LeaveOutAmountsThatAreOutOfRange) {
  Book book = open();
  booked(book, "Rent", 100, {"2026-09-01", "2026-10-01", "2026-11-01"});
  raw("PRAGMA ignore_check_constraints = ON;"
      "UPDATE transactions SET minor_units = 9223372036854775807");
  EXPECT_THAT(found(book), IsEmpty());
}

TEST_F(RecurringPayments, AreInTheOrderOfTheNextDay) {
  Book book = open();
  booked(book, "Rent", 100, {"2026-09-10", "2026-10-10", "2026-11-10"});
  booked(book, "Power", 100, {"2026-08-25", "2026-09-25", "2026-10-25"});
  EXPECT_THAT(found(book),
              ElementsAre("Power 100 2026-10-25 2026-11-25 3", "Rent 100 2026-11-10 2026-12-10 3"));
  EXPECT_THAT(found(open(), "2026-01-01"), IsEmpty());
}

TEST_F(RecurringPayments, AreDueWithinTheMonthOrTheNextSevenDays) {
  EXPECT_EQ(dueWords(due("2026-11-30"), "2026-11-01"), "is due on the 30th");
  EXPECT_EQ(dueWords(due("2026-11-21"), "2026-11-21"), "is due on the 21st");
  EXPECT_EQ(dueWords(due("2026-12-01"), "2026-11-24"), "is due on the 1st");
  EXPECT_EQ(dueWords(due("2026-12-01"), "2026-11-23"), "");
}

TEST_F(RecurringPayments, AreLateOnceTheyAreDue) {
  EXPECT_EQ(dueWords(due("2026-11-20"), "2026-11-23"), "was due on the 20th");
  EXPECT_EQ(dueWords(due("2026-11-20"), "2026-11-24"), "has not come this month");
  EXPECT_EQ(dueWords(due("2026-10-30"), "2026-11-24"), "did not come in October");
}

TEST_F(RecurringPayments, HaveEnglishOrdinals) {
  EXPECT_THAT((std::vector{ordinal(1), ordinal(2), ordinal(3), ordinal(4)}),
              ElementsAre("1st", "2nd", "3rd", "4th"));
  EXPECT_THAT((std::vector{ordinal(11), ordinal(12), ordinal(13), ordinal(21), ordinal(22),
                           ordinal(23), ordinal(30), ordinal(31)}),
              ElementsAre("11th", "12th", "13th", "21st", "22nd", "23rd", "30th", "31st"));
}

TEST_F(RecurringPayments, AreListedWithTheirDaysSumsAndCategories) {
  RecurringPayment arabic = due("2026-12-05");
  arabic.description = "مطعم أبو طارق\x1b[2J";
  arabic.amount = {5, "KWD"};
  EXPECT_EQ(RecurringView::table({due("2026-11-01"), arabic}, 80),
            "NEXT        LAST             AMOUNT  TIMES  DESCRIPTION           CATEGORY\n"
            "2026-11-01  2026-10-01  6500.00 EGP      3  Rent                  Home\n"
            "2026-12-05  2026-10-01    0.005 KWD      3  مطعم أبو طارق\\x1b[2J  Home\n");
}

TEST_F(RecurringPayments, FitInFortyAndEightyColumns) {
  RecurringPayment longest = due("2026-11-20");
  longest.description = longest.category = std::string(200, 'W');
  for (const std::size_t width : {40U, 80U}) {
    std::istringstream lines(RecurringView::table({longest}, width) +
                             RecurringView::dueLines({longest}, "2026-11-24", width));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(linux_platform::columnsOf(line), width) << line;
    }
  }
  EXPECT_THAT(RecurringView::dueLines({longest}, "2026-11-24", 40),
              HasSubstr("W… has not come this month\n"));
}

TEST_F(RecurringPayments, AreJsonOfTexts) {
  EXPECT_EQ(RecurringView::json(due("2026-11-01")).text(),
            R"({"description":"Rent","amount":"6500.00","currency":"EGP","category":"Home",)"
            R"("last":"2026-10-01","next":"2026-11-01","times":"3"})");
}

TEST_F(RecurringPayments, KeepALineInOrderThatBeginsFromRightToLeft) {
  RecurringPayment arabic = due("2026-11-01");
  arabic.description = "شركة";
  EXPECT_EQ(RecurringView::dueLines({arabic}, "2026-11-01", 80), "\u200eشركة is due on the 1st\n");
}

}  // namespace
}  // namespace kivo::overview
