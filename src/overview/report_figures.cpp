#include "overview/report_figures.h"

#include <algorithm>

#include "book/current_day.h"

namespace kivo::overview {

using book::Book;
using book::Counted;
using book::currentMonth;
using book::LedgerEntry;
using money::Kind;
using money::Money;
using money::Month;
using money::Period;

namespace {

constexpr int shownMonths = 12;

Period periodBefore(const Month& month) { return Period::of(month.before(shownMonths - 1), month); }

void readMonths(ReportFigures& figures, const Book& book, std::int64_t largest) {
  const MonthSummary& summary = figures.summary;
  for (int back = shownMonths - 1; back >= 0; --back) {
    figures.months.push_back({summary.month.before(back), MovedSums(summary.currency)});
  }
  const Period period = periodBefore(summary.month);
  for (const auto& group : book.sumsByMonth(period, largest)) {
    const auto found =
        std::find_if(figures.months.begin(), figures.months.end(),
                     [&](const ReportFigures::Month& one) { return one.month == group.group; });
    if (found == figures.months.end()) continue;
    found->transactions += group.transactions;
    if (group.sum.currency != summary.currency) continue;
    found->sums.add(group);
  }
  figures.entries =
      book.entries({.from = period.first, .to = period.last, .most = ReportFigures::mostEntries});
}

}  // namespace

std::vector<Money> expensesOfDays(const Book& book, const Month& month,
                                  const money::CurrencyCode& currency, std::int64_t largest) {
  std::vector<Money> days(static_cast<std::size_t>(month.days()), Money{0, currency});
  for (const auto& group : book.sumsByDay(Period::of(month), largest)) {
    const bool counts = group.kind == Kind::expense && group.sum.currency == currency;
    if (counts) days[static_cast<std::size_t>(group.group.number() - 1)] = group.sum;
  }
  return days;
}

ReportFigures readReport(const Book& book, const Month& month,
                         const money::CurrencyCode& currency) {
  const Counted counted = book.counted(periodBefore(month));
  ReportFigures figures{.summary = summarize(book, month, currency, counted)};
  readRecurring(figures.summary, book);
  readMonths(figures, book, counted.largest);
  figures.days = expensesOfDays(book, month, currency, counted.largest);
  figures.review =
      book.entries({.state = LedgerEntry::State::review, .most = ReportFigures::mostEntries});
  figures.runs = month == currentMonth();
  return figures;
}

}  // namespace kivo::overview
