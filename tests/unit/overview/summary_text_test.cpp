#include <sstream>

#include <gmock/gmock.h>

#include "overview/summary_view.h"
#include "platform/linux/terminal/text_columns.h"
#include "testkit/private_folders.h"

namespace kivo::overview {
namespace {

using linux_platform::columnsOf;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Le;
using testing::Not;
using testing::ResultOf;

using Look = SummaryView::Look;
using money::Kind;
using money::Money;

class ASummaryText : public testing::Test {
 protected:
  ASummaryText() {
    summary_.sums = sums(125050, 1850000, 0, 7);
    summary_.previous = sums(99, 0, 5000, 2);
    summary_.categories = {{"Groceries", egp(100000), egp(99)},
                           {"Transport", egp(25050), egp(0)},
                           {"Rent", egp(0), egp(50)}};
    summary_.payees = {{"Carrefour City", egp(100000), 12}, {"Uber", egp(25050), 1}};
  }
  static Money egp(std::int64_t minorUnits) { return {minorUnits, "EGP"}; }
  static MovedSums sums(std::int64_t expense, std::int64_t income, std::int64_t transfer,
                        std::int64_t transactions, const money::CurrencyCode& currency = "EGP") {
    MovedSums sums(currency);
    sums.expense.minorUnits = expense;
    sums.income.minorUnits = income;
    sums.transfer.minorUnits = transfer;
    sums.transactions = transactions;
    return sums;
  }
  [[nodiscard]] std::string text(const Look& look = {}) const {
    return SummaryView::text(summary_, "2026-12", look);
  }
  static std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }

  testkit::PrivateFolders folders_;
  MonthSummary summary_{"2026-11", "EGP"};
};

TEST_F(ASummaryText, ShowsAMonthBesideTheMonthBefore) {
  EXPECT_EQ(text(),
            "November 2026, in EGP\n"
            "beside October 2026\n"
            "\n"
            "      Nov    Oct\n"
            " 1,250.50   0.99  Spent\n"
            "18,500.00   0.00  Received\n"
            "     0.00  50.00  Transferred\n"
            "\n"
            "Spent on\n"
            " 1,000.00   0.99  ████████████████████████  Groceries\n"
            "   250.50   0.00  ██████                    Transport\n"
            "     0.00   0.50                            Rent\n"
            "\n"
            "Biggest payees\n"
            "1,000.00  12x  Carrefour City\n"
            "  250.50   1x  Uber\n");
}

TEST_F(ASummaryText, ShowsBudgetsWithFiguresAndBars) {
  summary_.budgets = {{"Groceries", egp(200000), egp(100000)},
                      {"Transport", egp(20000), egp(25050)}};
  EXPECT_THAT(text(),
              EndsWith("Budgets\n"
                       "1,000.00 of 2,000.00   50 %  ████████████              Groceries\n"
                       "  250.50 of   200.00  125 %  ████████████████████████  Transport\n"));
  EXPECT_THAT(text({.width = 40}), EndsWith("Budgets\n"
                                            "1,000.00 of 2,000.00   50 %  Groceries\n"
                                            "████████████            \n"
                                            "  250.50 of   200.00  125 %  Transport\n"
                                            "████████████████████████\n"));
}

TEST_F(ASummaryText, SaysWhatWasRefunded) {
  summary_.sums.refunded.minorUnits = 20000;
  EXPECT_THAT(text(), HasSubstr("0.99  Spent (1,450.50 less 200.00 refunded)\n18,500.00"));
  EXPECT_THAT(text({.width = 40}),
              HasSubstr("0.99  Spent\n(1,450.50 less 200.00 refunded)\n18,500.00"));
}

TEST_F(ASummaryText, ShowsMoreRefundsThanPaymentsBelowZero) {
  summary_.sums.expense.minorUnits = -500;
  summary_.sums.refunded.minorUnits = 700;
  summary_.categories = {{"Groceries", egp(-500), egp(99)}};
  summary_.payees = {{"Carrefour City", egp(-500), 1}};
  EXPECT_THAT(text(), HasSubstr("    -5.00   0.99  Spent (2.00 less 7.00 refunded)\n"));
  EXPECT_THAT(text(), HasSubstr("    -5.00   0.99                            Groceries\n"));
  EXPECT_THAT(text(), HasSubstr("-5.00  1x  Carrefour City\n"));
}

TEST_F(ASummaryText, NamesTheEntriesThatAreLeftOut) {
  summary_.leftOut = {3, 12};
  EXPECT_THAT(text({.width = 40}), EndsWith("\n\nLeft out of the sums, since their\n"
                                            "amounts are too large or not above zero:\n"
                                            "3, 12. kivo-ledger edit ID --amount\n"
                                            "corrects one.\n"));
  summary_.leftOut = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  EXPECT_THAT(text({.width = 200}), HasSubstr(": 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 and 2 more. "));
}

TEST_F(ASummaryText, SaysThatTheMonthStillRuns) {
  EXPECT_THAT(SummaryView::text(summary_, "2026-11", {}),
              testing::StartsWith("November 2026 so far, in EGP\nbeside all of October 2026\n"));
}

TEST_F(ASummaryText, FitsInFortyColumnsWithItsBars) {
  summary_.categories[1].name = "A category with a name that is too long for any column";
  summary_.payees[0].description = "A payee with a name that is too long for any column";
  const std::string narrow = text({.width = 40});
  EXPECT_THAT(linesOf(narrow), Each(ResultOf(columnsOf, Le(40U))));
  EXPECT_THAT(narrow, HasSubstr(" 1,000.00   0.99  ██"));
  EXPECT_THAT(narrow, HasSubstr("…\n"));
}

TEST_F(ASummaryText, DrawsTheSmallestBarForATinyShare) {
  summary_.categories[1].expense = egp(1);
  EXPECT_THAT(text(), HasSubstr("     0.01   0.00  ▏                         Transport\n"));
}

TEST_F(ASummaryText, DrawsTheWholeBarForTheLargestSumHoweverSmall) {
  summary_.categories = {{"Groceries", egp(1), egp(0)}};
  EXPECT_THAT(text(), HasSubstr("     0.01   0.00  ████████████████████████  Groceries\n"));
}

TEST_F(ASummaryText, LeavesOutTheBarsBeforeASum) {
  EXPECT_THAT(text({.width = 20}), HasSubstr(" 1,000.00   0.99  Groceries\n"));
}

TEST_F(ASummaryText, PutsNamesAtTheEndOfTheirLines) {
  summary_.categories[0].name = "بقالة";
  summary_.payees[0].description = "مطعم أبو طارق";
  EXPECT_THAT(text(), HasSubstr("█  بقالة\n"));
  EXPECT_THAT(text(), HasSubstr("1,000.00  12x  مطعم أبو طارق\n"));
}

TEST_F(ASummaryText, IsAlignedInTheDigitsOfTheLocale) {
  const testkit::ScopedVariable arabic("LC_ALL", "ar_EG.UTF-8");
  EXPECT_THAT(text(), HasSubstr(" ١٬٢٥٠٫٥٠\u200e   ٠٫٩٩\u200e  Spent\n"));
  EXPECT_THAT(text(), HasSubstr("١٨٬٥٠٠٫٠٠\u200e   ٠٫٠٠\u200e  Received\n"));
}

TEST_F(ASummaryText, HasNoControlCharactersOfAMessage) {
  summary_.categories[0].name = "a\x1b[2Jb";
  summary_.payees[0].description = "line\nbreak \u202e";
  EXPECT_THAT(text(), HasSubstr("  a\\x1b[2Jb\n"));
  EXPECT_THAT(text(), HasSubstr("line\\nbreak \\u202e\n"));
}

TEST_F(ASummaryText, IsColouredOnlyWhenAskedTo) {
  EXPECT_THAT(text(), Not(HasSubstr("\x1b")));
  EXPECT_THAT(text({.style = Look::Style::coloured}), HasSubstr("\x1b[1mSpent on\x1b[0m\n"));
}

TEST_F(ASummaryText, ListsOtherCurrenciesApart) {
  summary_.otherCurrencies = {sums(12005, 5, 0, 2, "KWD"), sums(0, 0, 100, 1, "USD")};
  EXPECT_THAT(text(), HasSubstr("\nBesides, in other currencies\n"
                                "KWD 12.005 spent\n"
                                "KWD 0.005 received\n"
                                "USD 1.00 transferred\n"));
}

TEST_F(ASummaryText, SaysHowManyWaitInReview) {
  summary_.review = 1;
  EXPECT_THAT(text(), EndsWith("\n\n1 transaction waits in review:\nkivo-ledger review\n"));
  summary_.review = 2;
  EXPECT_THAT(text(), EndsWith("\n\n2 transactions wait in review:\nkivo-ledger review\n"));
}

TEST_F(ASummaryText, SaysHowManyMessagesWithASumWereNotBooked) {
  EXPECT_THAT(text(), Not(HasSubstr("not booked")));
  summary_.ignored = 1;
  EXPECT_THAT(text(), EndsWith("\n\n1 message with a sum was not booked:\nkivo-ledger ignored\n"));
  summary_.ignored = 500;
  const std::string most = text({.width = 40});
  EXPECT_THAT(most,
              EndsWith("\n\n500 messages with a sum were not booked:\nkivo-ledger ignored\n"));
  EXPECT_THAT(linesOf(most), Each(ResultOf(columnsOf, Le(40U))));
}

TEST_F(ASummaryText, SaysWhichPaymentsOfEachMonthAreDueOrLate) {
  summary_.recurring = {{"Gym", "Health", egp(100), "2026-10-05", "2026-11-05", 3},
                        {"Rent", "Home", egp(100), "2026-10-30", "2026-11-30", 3},
                        {"Club", "Health", egp(100), "2026-11-20", "2026-12-20", 3}};
  EXPECT_THAT(text(), Not(HasSubstr("Each month")));
  summary_.today = {"2026-11-21", egp(0), egp(0), 0};
  const std::string lines = "\nEach month\nGym has not come this month\nRent is due on the 30th\n";
  EXPECT_THAT(text(), EndsWith("Uber\n" + lines));
  summary_.sums = MovedSums("EGP");
  EXPECT_EQ(text(), "Nothing is booked in November 2026.\n" + lines);
}

TEST_F(ASummaryText, OfAnEmptyMonthIsOneSentence) {
  summary_ = {"2026-02", "EGP"};
  EXPECT_EQ(text(), "Nothing is booked in February 2026.\n");
}

}  // namespace
}  // namespace kivo::overview
