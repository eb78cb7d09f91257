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
using testing::StartsWith;

class AYearsText : public testing::Test {
 protected:
  AYearsText() {
    summary_.sums = sums(2000, 1500, 300);
    summary_.previous = sums(99, 0, 0);
    for (const money::Month& month : summary_.year.months()) {
      summary_.months.push_back({month, sums(0, 0, 0, 0), egp(0)});
    }
    summary_.months[0].sums = sums(1500, 1500, 0);
    summary_.months[0].previous = egp(99);
    summary_.months[2].sums = sums(500, 0, 300);
    summary_.categories = {{"Groceries", egp(1800), egp(99)}, {"Transport", egp(200), egp(0)}};
    const std::vector<money::Money> nothing(12, egp(0));
    summary_.categoryMonths = {nothing, nothing};
    summary_.categoryMonths[0][0] = egp(1500);
    summary_.categoryMonths[0][2] = egp(300);
    summary_.categoryMonths[1][2] = egp(200);
    summary_.payees = {{"Carrefour City", egp(1800), 12}, {"Uber", egp(200), 1}};
    summary_.payeesBefore = {egp(99), egp(0)};
    summary_.shownMonths = 3;
    summary_.runs = true;
  }
  static money::Money egp(std::int64_t minorUnits) { return {minorUnits, "EGP"}; }
  static MovedSums sums(std::int64_t expense, std::int64_t income, std::int64_t transfer,
                        std::int64_t transactions = 1) {
    MovedSums sums("EGP");
    sums.expense = egp(expense);
    sums.income = egp(income);
    sums.transfer = egp(transfer);
    sums.transactions = transactions;
    return sums;
  }
  [[nodiscard]] std::string text(std::size_t width = 80) const {
    return SummaryView::text(summary_, {.width = width});
  }
  static std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }

  testkit::PrivateFolders folders_;
  YearSummary summary_{money::Year(2026), "EGP"};
};

TEST_F(AYearsText, ShowsARunningYearBesideTheYearBefore) {
  EXPECT_EQ(text(),
            "2026 so far, in EGP\n"
            "beside all of 2025\n"
            "\n"
            " 2026   2025\n"
            "20.00   0.99  Spent\n"
            "15.00   0.00  Received\n"
            " 3.00   0.00  Transferred\n"
            "-5.00  -0.99  Saved\n"
            "\n"
            "Months\n"
            "Spent  2025  Received  Saved\n"
            "15.00  0.99     15.00   0.00  ████████████████████████  Jan\n"
            " 0.00  0.00      0.00   0.00                            Feb\n"
            " 5.00  0.00      0.00  -5.00  ████████                  Mar\n"
            "\n"
            "Spent on\n"
            " 2026  2025  JFMAMJJASOND\n"
            "18.00  0.99  █ ▂           Groceries\n"
            " 2.00  0.00    █           Transport\n"
            "\n"
            "Biggest payees\n"
            " 2026  2025\n"
            "18.00  0.99  12x  Carrefour City\n"
            " 2.00  0.00   1x  Uber\n");
}

TEST_F(AYearsText, ShowsAYearThatIsOverWithAllItsMonths) {
  summary_.shownMonths = 12;
  summary_.runs = false;
  EXPECT_THAT(text(), StartsWith("2026, in EGP\nbeside 2025\n"));
  EXPECT_THAT(text(), HasSubstr("  Dec\n\nSpent on\n"));
}

TEST_F(AYearsText, SaysHowMuchWasRefunded) {
  summary_.sums.refunded = egp(300);
  EXPECT_THAT(text(), HasSubstr("20.00   0.99  Spent (23.00 less 3.00 refunded)\n"));
  EXPECT_THAT(text(), HasSubstr("15.00   0.00  Received\n"));
}

TEST_F(AYearsText, DrawsNoBarForAMonthWithMoreRefundsThanExpenses) {
  summary_.categoryMonths[1][0] = egp(-500);
  EXPECT_THAT(text(), HasSubstr("   █           Transport\n"));
}

TEST_F(AYearsText, FitsInFortyColumns) {
  summary_.months[0].sums = sums(7150000, 1850000, 0);
  summary_.categories[0].name = "A category with a name that is too long for any column";
  summary_.payees[0].description = "A payee with a name that is too long for any column";
  const std::string narrow = text(40);
  EXPECT_THAT(linesOf(narrow), Each(ResultOf(columnsOf, Le(40U))));
  EXPECT_THAT(narrow, HasSubstr("71,500.00  18,500.00  -53,000.00  Jan\n"));
  EXPECT_THAT(narrow, HasSubstr("…\n"));
}

TEST_F(AYearsText, FitsInEightyColumnsWithLongNames) {
  summary_.categories[0].name = std::string(200, 'W');
  summary_.payees[0].description = std::string(200, 'W');
  EXPECT_THAT(linesOf(text()), Each(ResultOf(columnsOf, Le(80U))));
}

TEST_F(AYearsText, HasNoControlCharactersOfAMessage) {
  summary_.categories[0].name = "a\x1b[2Jb";
  summary_.payees[0].description = "line\nbreak \u202e";
  EXPECT_THAT(text(), HasSubstr("  a\\x1b[2Jb\n"));
  EXPECT_THAT(text(), HasSubstr("  line\\nbreak \\u202e\n"));
}

TEST_F(AYearsText, NamesOtherCurrenciesReviewsAndWhatIsLeftOut) {
  MovedSums other("KWD");
  other.expense.minorUnits = 12005;
  summary_.otherCurrencies = {other};
  summary_.review = 2;
  summary_.leftOut = {3};
  EXPECT_THAT(text(), HasSubstr("\nBesides, in other currencies\nKWD 12.005 spent\n"));
  EXPECT_THAT(text(), HasSubstr("not above zero: 3."));
  EXPECT_THAT(text(), EndsWith("\n2 transactions wait in review:\nkivo-ledger review\n"));
}

TEST_F(AYearsText, OfAnEmptyYearIsOneSentence) {
  summary_ = {money::Year(2026), "EGP"};
  EXPECT_EQ(text(), "Nothing is booked in 2026.\n");
}

TEST_F(AYearsText, WithoutExpensesHasNoCategories) {
  summary_.categories.clear();
  summary_.payees.clear();
  EXPECT_THAT(text(), Not(HasSubstr("Spent on")));
  EXPECT_THAT(text(), Not(HasSubstr("Biggest payees")));
}

}  // namespace
}  // namespace kivo::overview
