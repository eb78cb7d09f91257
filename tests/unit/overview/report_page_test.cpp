#include "overview/report_page.h"

#include <gmock/gmock.h>

#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

namespace kivo::overview {

using recording::LedgerTest;

using book::Book;
using book::LedgerEntry;
using money::Kind;
using money::largestSum;
using recognition::Outcome;
using recognition::Reading;

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class AReport : public LedgerTest {
 protected:
  void booked(Book& book, const Reading& reading, const money::Day& date = "2026-11-21") {
    recorded(book, "KEY-" + std::to_string(++keys_), reading, date);
  }
  static std::string page(const Book& book, const money::Month& month = "2026-11") {
    return reportPage(readReport(book, month, "EGP"));
  }
  static std::size_t countOf(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
      ++count;
    }
    return count;
  }

  testkit::SetClock clock_{testkit::utc(2026, 11, 21, 12)};
  int keys_ = 0;
};

TEST_F(AReport, HasTwelveMonthsUpToItsOwn) {
  Book book = open();
  booked(book, spent(100), "2025-11-30");
  booked(book, spent(2000), "2025-12-01");
  booked(book, spent(30000), "2026-11-30");
  booked(book, spent(400000), "2026-12-01");
  const ReportFigures figures = readReport(book, "2026-11", "EGP");
  ASSERT_EQ(figures.months.size(), 12U);
  EXPECT_EQ(figures.months.front().month, money::Month("2025-12"));
  EXPECT_EQ(figures.months.front().sums.expense.minorUnits, 2000);
  EXPECT_EQ(figures.months.back().month, money::Month("2026-11"));
  EXPECT_EQ(figures.months.back().sums.expense.minorUnits, 30000);
  ASSERT_EQ(figures.entries.size(), 2U);
  EXPECT_EQ(figures.entries[0].date, money::Day("2026-11-30"));
  EXPECT_EQ(figures.entries[1].date, money::Day("2025-12-01"));
}

TEST_F(AReport, ShowsTheBudgetsOfItsMonth) {
  Book book = open();
  booked(book, spent(310000));
  EXPECT_THAT(page(book), Not(HasSubstr("Budgets")));
  book.setBudget({"Groceries", {300000, "EGP"}});
  book.setBudget({"Dining", {90000, "EGP"}});
  book.setBudget({"Fees", {100, "USD"}});
  const std::string html = page(book);
  EXPECT_THAT(html, HasSubstr("<bdi>Groceries</bdi> <small>103 %</small><svg class=\"share\" "
                              "aria-hidden=\"true\" preserveAspectRatio=\"none\" "
                              "viewBox=\"0 0 100 1\"><rect width=\"100\""));
  EXPECT_THAT(html, HasSubstr(">-100.00</bdi></td></tr>"));
  EXPECT_THAT(html, HasSubstr("<bdi>Dining</bdi> <small>0 %</small>"));
  EXPECT_THAT(html, Not(HasSubstr("Fees")));
}

TEST_F(AReport, HasEachDayOfItsMonth) {
  Book book = open();
  booked(book, spent(100), "2026-02-01");
  booked(book, spent(20), "2026-02-28");
  booked(book, spent(3), "2026-02-28");
  const ReportFigures figures = readReport(book, "2026-02", "EGP");
  ASSERT_EQ(figures.days.size(), 28U);
  EXPECT_EQ(figures.days.front().minorUnits, 100);
  EXPECT_EQ(figures.days[13].minorUnits, 0);
  EXPECT_EQ(figures.days.back().minorUnits, 23);
}

TEST_F(AReport, ShowsAMonthWithMoreRefundsThanPayments) {
  Book book = open();
  booked(book, spent(100), "2026-11-03");
  Reading refund = spent(2000);
  refund.kind = Kind::income;
  refund.refund = true;
  booked(book, refund, "2026-11-04");
  const std::string html = page(book);
  EXPECT_THAT(html, HasSubstr("<small><bdi>1.00</bdi> less <bdi>20.00</bdi> refunded</small>"));
  EXPECT_THAT(html, HasSubstr("4 November 2026</th><td class=\"sum\"><bdi>-20.00</bdi>"));
  EXPECT_THAT(html, HasSubstr("<rect width=\"0\" height=\"1\"/>"));
  EXPECT_THAT(html, HasSubstr("</bdi> · refund"));
  EXPECT_THAT(html, Not(HasSubstr("width=\"-")));
  EXPECT_THAT(html, Not(HasSubstr("height=\"-")));
}

TEST_F(AReport, DrawsAndListsADayBehindDaysWithoutExpenses) {
  Book book = open();
  booked(book, spent(100), "2026-11-03");
  booked(book, spent(2345), "2026-11-20");
  const std::string html = page(book);
  EXPECT_THAT(html, HasSubstr("<title>3 November 2026: 1.00</title>"));
  EXPECT_THAT(html, HasSubstr("<title>20 November 2026: 23.45</title>"));
  EXPECT_THAT(html, HasSubstr("20 November 2026</th><td class=\"sum\">"));
  EXPECT_THAT(html, Not(HasSubstr("19 November 2026</th>")));
}

TEST_F(AReport, DrawsTheFirstDayAndTheFirstMonthAtTheLeftEdge) {
  Book book = open();
  booked(book, spent(100), "2025-12-01");
  booked(book, spent(100), "2026-11-01");
  booked(book, spent(100), "2026-11-02");
  const std::string html = page(book);
  EXPECT_THAT(html, HasSubstr("<title>December 2025: spent 1.00, received 0.00</title>"
                              "<rect class=\"spent\" x=\"18\""));
  EXPECT_THAT(html,
              HasSubstr("<title>1 November 2026: 1.00</title><rect class=\"spent\" x=\"15\""));
  EXPECT_THAT(html,
              HasSubstr("<title>2 November 2026: 1.00</title><rect class=\"spent\" x=\"115\""));
}

TEST_F(AReport, EndsAnAxisAtTheNextRoundNumber) {
  const auto axisFor = [this](std::int64_t largest) {
    Book book = open();
    for (const LedgerEntry& entry : book.entries({})) book.remove(entry.id);
    booked(book, spent(largest));
    const std::string html = page(book);
    const std::size_t begin = html.find("<div class=\"axis\"");
    return html.substr(begin, html.find("</div>", begin) - begin);
  };
  for (const auto& [largest, labels] :
       {std::pair(10000, "<bdi>100</bdi></span><span><bdi>50</bdi>"),
        {10001, "<bdi>200</bdi></span><span><bdi>100</bdi>"},
        {20001, "<bdi>400</bdi></span><span><bdi>200</bdi>"},
        {40001, "<bdi>600</bdi></span><span><bdi>300</bdi>"},
        {60001, "<bdi>800</bdi></span><span><bdi>400</bdi>"},
        {80001, "<bdi>1,000</bdi></span><span><bdi>500</bdi>"}}) {
    EXPECT_THAT(axisFor(largest), HasSubstr(labels)) << largest;
  }
}

TEST_F(AReport, EndsTheAxisAtOneWhenNothingWasReceivedOrSpent) {
  Book book = open();
  Reading transfer = spent(100);
  transfer.kind = Kind::transfer;
  booked(book, transfer);
  EXPECT_THAT(page(book), HasSubstr("<bdi>1.00</bdi></span><span><bdi>0.50</bdi></span><span>"
                                    "<bdi>0.00</bdi></span>"));
}

TEST_F(AReport, DrawsALineAtTheTopTheMiddleAndTheGroundOfAChart) {
  Book book = open();
  booked(book, spent(100));
  EXPECT_THAT(page(book), HasSubstr("<g class=\"grid\"><path d=\"M0 0H1200\"/>"
                                    "<path d=\"M0 50H1200\"/><path d=\"M0 100H1200\"/></g>"));
}

TEST_F(AReport, ShowsSumsToTheCent) {
  Book book = open();
  booked(book, spent(largestSum));
  booked(book, spent(1));
  EXPECT_THAT(page(book), HasSubstr("90,071,992,547,409.93"));
}

TEST_F(AReport, SaysWhetherItsMonthStillRuns) {
  Book book = open();
  booked(book, spent(100), "2026-11-01");
  booked(book, spent(100), "2026-10-01");
  EXPECT_THAT(page(book), HasSubstr("So far, beside all of October 2026."));
  EXPECT_THAT(page(book, "2026-10"), HasSubstr(">Beside September 2026."));
}

TEST_F(AReport, EscapesAMessagesTags) {
  Book book = open();
  Reading reading = spent(100, "<script>alert(\"1\")</script> & 'co'</style>");
  reading.category = "<img src=x onerror=alert(1)>\n\x1b[2J\u202e";
  booked(book, reading);
  const std::string written = page(book);
  const std::string name =
      "<bdi>&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt; &amp; "
      "&#39;co&#39;&lt;/style&gt;</bdi>";
  EXPECT_EQ(countOf(name, written), 2U);  // a payee and a transaction
  EXPECT_EQ(countOf("<bdi>&lt;img src=x onerror=alert(1)&gt;\\n\\x1b[2J\\u202e</bdi>", written),
            2U);
  EXPECT_THAT(written, AllOf(Not(HasSubstr("<script")), Not(HasSubstr("<img")),
                             Not(HasSubstr("\x1b")), Not(HasSubstr("\u202e"))));
  EXPECT_EQ(countOf("</style>", written), 1U);
}

TEST_F(AReport, HasAStrictPolicyAndNoAddress) {
  Book book = open();
  booked(book, spent(100));
  const std::string written = page(book);
  EXPECT_THAT(written, HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'; "
                                 "img-src data:; base-uri 'none'; form-action 'none'\""));
  EXPECT_THAT(written, AllOf(Not(HasSubstr("http:")), Not(HasSubstr("https:")),
                             Not(HasSubstr("url(")), Not(HasSubstr("href="))));
}

TEST_F(AReport, IsolatesNamesThatAreWrittenFromRightToLeft) {
  Book book = open();
  booked(book, spent(100, "مطعم أبو طارق"));
  EXPECT_EQ(countOf("<bdi>مطعم أبو طارق</bdi>", page(book)), 2U);
}

TEST_F(AReport, ShowsOtherCurrenciesApart) {
  Book book = open();
  booked(book, spent(100));
  Reading abroad = spent(2005, "Airport", "KWD");
  abroad.outcome = Outcome::needsReview;
  accept(book, recorded(book, "ABROAD", abroad).id);
  const std::string written = page(book);
  EXPECT_THAT(written, HasSubstr(">KWD</th><td class=\"sum\"><bdi>2.005</bdi>"));
  EXPECT_THAT(written, HasSubstr("<strong><bdi>EGP\u00a01.00</bdi></strong>"));
  EXPECT_THAT(written, HasSubstr("<td class=\"sum\"><bdi>KWD\u00a02.005</bdi></td>"));
}

TEST_F(AReport, OfAnEmptyBookIsOneSentence) {
  const std::string written = page(open());
  EXPECT_THAT(written, HasSubstr("Nothing is booked in November 2026."));
  EXPECT_THAT(written, AllOf(Not(HasSubstr("<table")), Not(HasSubstr("<svg"))));
}

TEST_F(AReport, OfAnEmptyMonthShowsTheOtherMonths) {
  Book book = open();
  booked(book, spent(100), "2026-08-01");
  const std::string written = page(book);
  EXPECT_THAT(written, HasSubstr("Nothing is booked in November 2026."));
  EXPECT_THAT(written, HasSubstr("Twelve months"));
  EXPECT_THAT(written, HasSubstr("<summary>August 2026 <small>1 transaction</small>"));
}

TEST_F(AReport, SaysHowManyTransactionsItLeavesOut) {
  Book book = open();
  booked(book, spent(100));
  ReportFigures figures = readReport(book, "2026-11", "EGP");
  EXPECT_THAT(reportPage(figures), Not(HasSubstr("The newest")));
  figures.months.back().transactions = 7000;
  EXPECT_THAT(reportPage(figures), HasSubstr("The newest 1 of 7000 are here."));
}

TEST_F(AReport, ListsTheNewestOfAVeryLongYear) {
  open();
  testkit::RawStore(file()).run(
      "WITH RECURSIVE numbers (value) AS (SELECT 1 UNION ALL SELECT value + 1 FROM numbers WHERE "
      "value < 5001) INSERT INTO transactions (user, key, date, kind, minor_units, currency, "
      "description, category, payee, folded_payee, account, reference, state) SELECT 'user', "
      "'KEY-' || value, '2026-11-01', 'expense', 1, 'EGP', 'A', 'B', '', '', '', '', 'booked' "
      "FROM numbers");
  EXPECT_EQ(readReport(open(), "2026-11", "EGP").entries.size(), 5000U);
}

TEST_F(AReport, CountsWhatWaitsInReview) {
  Book book = open();
  Reading unclear = spent(100);
  unclear.outcome = Outcome::needsReview;
  booked(book, unclear);
  EXPECT_THAT(page(book), HasSubstr("1 transaction waits in review and is not in these sums"));
}

TEST_F(AReport, CountsIgnoredMessages) {
  Book book = open();
  ReportFigures figures = readReport(book, "2026-11", "EGP");
  EXPECT_THAT(reportPage(figures), Not(HasSubstr("kivo-ledger ignored")));
  figures.summary.ignored = 1;
  EXPECT_THAT(reportPage(figures),
              HasSubstr("<p class=\"notice\">1 message with a sum was not booked: "
                        "<code>kivo-ledger ignored</code> shows it.</p>"));
  figures.summary.ignored = 2;
  EXPECT_THAT(reportPage(figures), HasSubstr("2 messages with a sum were not booked: "
                                             "<code>kivo-ledger ignored</code> shows them."));
}

TEST_F(AReport, ListsWhatWaitsInReviewOfAnyMonth) {
  Book book = open();
  Reading unclear = spent(2005, "Nile <b>Cinema", "KWD");
  unclear.outcome = Outcome::needsReview;
  booked(book, unclear, "2025-03-02");
  unclear.amount.reset();
  unclear.kind = Kind::income;
  booked(book, unclear, "2026-11-02");
  const std::string written = page(book);
  EXPECT_THAT(written,
              HasSubstr("<td class=\"count id soft\">1</td><td><bdi>Nile &lt;b&gt;Cinema</bdi>"
                        "<small class=\"message\"><time datetime=\"2025-03-02\">2025-03-02"
                        "</time></small><small class=\"message\"><bdi>text of KEY-1</bdi>"
                        "</small></td><td class=\"sum\"><bdi>KWD\u00a02.005</bdi></td>"));
  EXPECT_THAT(written, HasSubstr("2026-11-02</time> · income</small>"));
  EXPECT_THAT(written, HasSubstr("<td class=\"sum\">unknown</td>"));
  EXPECT_LT(written.find("2026-11-02</time>"), written.find("2025-03-02</time>"));
}

TEST_F(AReport, SaysHowManyOfAVeryLongReviewItLeavesOut) {
  Book book = open();
  Reading unclear = spent(100);
  unclear.outcome = Outcome::needsReview;
  booked(book, unclear);
  ReportFigures figures = readReport(book, "2026-11", "EGP");
  EXPECT_THAT(reportPage(figures), Not(HasSubstr("The newest")));
  figures.summary.review = 7000;
  EXPECT_THAT(reportPage(figures), HasSubstr("The newest 1 are here."));
}

TEST_F(AReport, SaysWhichPaymentsOfEachMonthAreDue) {
  Book book = open();
  for (const money::Day date : std::vector<money::Day>{"2026-08-30", "2026-09-30", "2026-10-30"}) {
    booked(book, spent(100, "Rent <b>"), date);
  }
  EXPECT_THAT(page(book), HasSubstr("<bdi>Rent &lt;b&gt;</bdi> is due on the 30th</td>"
                                    "<td class=\"sum\"><bdi>1.00</bdi></td>"));
  EXPECT_THAT(page(book, "2026-10"), Not(HasSubstr("is due")));
}

}  // namespace
}  // namespace kivo::overview
