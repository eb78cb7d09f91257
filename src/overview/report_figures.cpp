#include "overview/report_figures.h"

#include <algorithm>

#include "money/calendar_day.h"
#include "overview/current_day.h"
#include "platform/foundation/number_text.h"

namespace kivo::overview {

using book::Book;
using book::Counted;
using book::Grouping;
using book::GroupSum;
using book::LedgerEntry;
using money::daysOf;
using money::firstDayOf;
using money::Kind;
using money::lastDayOf;
using money::monthBefore;

namespace {

constexpr int shownMonths = 12;

void readMonths(ReportFigures& figures, const Book& book, std::int64_t largest) {
  const std::string& month = figures.summary.month;
  for (int back = shownMonths - 1; back >= 0; --back) {
    figures.months.emplace_back().month = monthBefore(month, back);
  }
  const std::string from = firstDayOf(figures.months.front().month);
  for (const GroupSum& group : book.sums(Grouping::month, from, lastDayOf(month), largest)) {
    const auto found =
        std::find_if(figures.months.begin(), figures.months.end(),
                     [&](const ReportFigures::Month& one) { return one.month == group.group; });
    if (found == figures.months.end()) continue;
    found->transactions += group.transactions;
    if (group.sum.currency == figures.summary.currency) found->sums.add(group);
  }
  figures.entries =
      book.entries({.from = from, .to = lastDayOf(month), .most = ReportFigures::mostEntries});
}

void readDays(ReportFigures& figures, const Book& book, std::int64_t largest) {
  const std::string& month = figures.summary.month;
  figures.days.resize(static_cast<std::size_t>(daysOf(month)));
  for (const GroupSum& group :
       book.sums(Grouping::day, firstDayOf(month), lastDayOf(month), largest)) {
    const bool counts =
        group.kind == Kind::expense && group.sum.currency == figures.summary.currency;
    const auto day = platform::integerFromText(std::string_view(group.group).substr(8)).value_or(0);
    if (!counts || day < 1 || day > daysOf(month)) continue;
    figures.days[static_cast<std::size_t>(day - 1)] = group.sum.minorUnits;
  }
}

}  // namespace

ReportFigures readReport(const Book& book, const std::string& month, const std::string& currency) {
  ReportFigures figures;
  const Counted counted =
      book.counted(firstDayOf(monthBefore(month, shownMonths - 1)), lastDayOf(month));
  figures.summary = summarize(book, month, currency, counted);
  readMonths(figures, book, counted.largest);
  readDays(figures, book, counted.largest);
  figures.review =
      book.entries({.state = LedgerEntry::State::review, .most = ReportFigures::mostEntries});
  figures.runs = month == currentMonth();
  return figures;
}

}  // namespace kivo::overview
