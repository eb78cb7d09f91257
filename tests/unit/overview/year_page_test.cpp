#include "overview/year_page.h"

#include <regex>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "overview/sum_format.h"
#include "overview/summary_view.h"
#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

namespace kivo::overview {
namespace {

using testing::HasSubstr;
using testing::Not;

class AYearsPage : public recording::LedgerTest {
 protected:
  using Book = book::Book;

  void booked(Book& book, const recognition::Reading& reading, const money::Day& date) {
    recorded(book, "KEY-" + std::to_string(++keys_), reading, date);
  }
  static recognition::Reading in(const std::string& category, std::int64_t minorUnits) {
    recognition::Reading reading = spent(minorUnits, "Shop of " + category);
    reading.category = category;
    return reading;
  }
  static std::string page(const Book& book, int year = 2026) {
    return yearPage(summarize(book, money::Year(year), "EGP"));
  }

  testkit::SetClock clock_{testkit::utc(2026, 11, 21, 12)};
  int keys_ = 0;
};

TEST_F(AYearsPage, AgreesWithTheJsonOfTheYear) {
  Book book = open();
  for (int at = 1; at <= 60; ++at) {
    booked(book, in("Category " + std::to_string(at % 7), at * 7919),
           money::Day("2026-11-20").before(at * 11));
  }
  const YearSummary summary = summarize(book, money::Year(2026), "EGP");
  const auto json = nlohmann::json::parse(SummaryView::json(summary).text());
  const std::string shown =
      std::regex_replace(yearPage(summary), std::regex("<svg class=\"share\".*?</svg>"), "");
  const SumFormat format("EGP");
  const auto cell = [&](const nlohmann::json& sum, const std::string& kind = "sum") {
    const auto read = money::moneyFromText(sum.get<std::string>(), "EGP");
    return "<td class=\"" + kind + "\"><bdi>" + format.plain(read.value()) + "</bdi></td>";
  };
  ASSERT_EQ(json["categories"].size(), 7U);
  for (const auto& category : json["categories"]) {
    const std::string name = "<bdi>" + category["category"].get<std::string>() + "</bdi></th>";
    EXPECT_THAT(shown, HasSubstr(name + cell(category["expense"]) +
                                 cell(category["previous"], "sum soft")));
    std::string months;
    for (std::size_t month = 0; month < 11; ++month) months += cell(category["months"][month]);
    EXPECT_THAT(shown, HasSubstr(name + months + "</tr>"));
  }
  std::string spentByMonth;
  for (std::size_t month = 0; month < 11; ++month) {
    const auto& of = json["months"][month];
    spentByMonth += cell(of["expense"]);
    EXPECT_THAT(shown, HasSubstr("</th>" + cell(of["expense"]) + cell(of["previous"], "sum soft") +
                                 cell(of["income"]) + cell(of["saving"])));
  }
  EXPECT_THAT(shown, HasSubstr("<th scope=\"row\">Spent</th>" + spentByMonth + "</tr></tfoot>"));
  for (const auto& payee : json["payees"]) {
    EXPECT_THAT(shown, HasSubstr("<bdi>" + payee["description"].get<std::string>() +
                                 "</bdi></th><td class=\"count soft\">" +
                                 payee["transactions"].get<std::string>() + "</td>" +
                                 cell(payee["expense"]) + cell(payee["previous"], "sum soft")));
  }
}

TEST_F(AYearsPage, SaysThatTheYearStillRuns) {
  Book book = open();
  booked(book, spent(100), "2026-03-01");
  booked(book, spent(100), "2025-12-01");
  EXPECT_THAT(page(book), HasSubstr("So far, beside all of 2025. Sums are in EGP."));
  EXPECT_THAT(page(book), Not(HasSubstr("\"row\">Dec</th>")));
  EXPECT_THAT(page(book, 2025), HasSubstr(">Beside 2024. Sums are in EGP."));
  EXPECT_THAT(page(book, 2025), HasSubstr("\"row\">Dec</th>"));
}

TEST_F(AYearsPage, HasNoScriptAndLoadsNothing) {
  Book book = open();
  booked(book, spent(100), "2026-03-01");
  EXPECT_THAT(page(book), HasSubstr("default-src 'none'"));
  for (const char* const part : {"<script", "<link", "<img", "src=", "href="}) {
    EXPECT_THAT(page(book), Not(HasSubstr(part)));
  }
}

TEST_F(AYearsPage, ShowsAHostileNameAsItsText) {
  Book book = open();
  const std::string hostile = "<script>alert('x')</script>\"&\x1b\u202e";
  recognition::Reading reading = spent(100, hostile);
  reading.category = hostile;
  booked(book, reading, "2026-03-01");
  EXPECT_THAT(page(book), Not(HasSubstr("<script")));
  EXPECT_THAT(page(book), HasSubstr("<bdi>&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;&quot;"
                                    "&amp;\\x1b\\u202e</bdi>"));
}

TEST_F(AYearsPage, OfAnEmptyYearIsOneSentence) {
  const std::string empty = page(open());
  EXPECT_THAT(empty, HasSubstr("Nothing is booked in 2026."));
  EXPECT_THAT(empty, Not(HasSubstr("<section")));
}

TEST_F(AYearsPage, WithTransactionsInAnotherCurrencyAloneHasTheirTable) {
  Book book = open();
  booked(book, spent(100), "2026-03-01");
  testkit::RawStore(file()).run("UPDATE transactions SET currency = 'KWD'");
  EXPECT_THAT(page(book), HasSubstr("<th scope=\"row\">KWD</th>"));
  EXPECT_THAT(page(book), Not(HasSubstr("id=\"months\"")));
}

TEST_F(AYearsPage, NamesReviewsAndAmountsThatAreLeftOut) {
  Book book = open();
  booked(book, spent(100), "2026-03-01");
  booked(book, spent(100), "2026-03-02");
  testkit::RawStore(file()).run(
      "PRAGMA ignore_check_constraints = ON;"
      "UPDATE transactions SET minor_units = 9223372036854775807 WHERE id = 1");
  recognition::Reading unclear = spent(5);
  unclear.outcome = recognition::Outcome::needsReview;
  recorded(book, "R", unclear, "2024-03-01");
  EXPECT_THAT(page(book), HasSubstr("above zero: 1. kivo-ledger edit"));
  EXPECT_THAT(page(book), HasSubstr(">1 transaction waits in review and is not in these sums: "
                                    "<code>kivo-ledger review</code> shows it.</p>"));
}

}  // namespace
}  // namespace kivo::overview
