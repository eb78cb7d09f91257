#include "overview/year_summary.h"

#include <algorithm>
#include <map>
#include <string>

#include "book/current_day.h"

namespace kivo::overview {

using book::Book;
using money::CurrencyCode;
using money::Money;
using money::Month;
using money::Period;
using money::Year;

namespace {

void readMonths(YearSummary& summary, const NamedSums& categories) {
  std::map<Month, MovedSums> sums;
  for (const auto& group : categories) {
    if (group.sum.currency != summary.currency) continue;
    MovedSums& ofMonth = sums.try_emplace(group.group.month, summary.currency).first->second;
    ofMonth.add(group);
  }
  const MovedSums nothing(summary.currency);
  const auto of = [&](const Month& month) {
    const auto found = sums.find(month);
    return found == sums.end() ? nothing : found->second;
  };
  for (const Month& month : summary.year.months()) {
    summary.months.push_back({month, of(month), of(month.before(12)).expense});
  }
}

void readCategoryMonths(YearSummary& summary, const NamedSums& categories) {
  const Money nothing{0, summary.currency};
  summary.categoryMonths.assign(summary.categories.size(),
                                std::vector<Money>(summary.months.size(), nothing));
  for (std::size_t month = 0; month < summary.months.size(); ++month) {
    const auto expenses =
        expensesByName(categories, Period::of(summary.months[month].month), summary.currency);
    for (std::size_t at = 0; at < summary.categories.size(); ++at) {
      const auto found = expenses.find(nameKey(summary.categories[at].name));
      if (found != expenses.end()) summary.categoryMonths[at][month] = found->second.expense;
    }
  }
}

void readPayeesBefore(YearSummary& summary, const NamedSums& descriptions) {
  const auto before =
      expensesByName(descriptions, Period::of(summary.year.before()), summary.currency);
  for (const YearSummary::Payee& payee : summary.payees) {
    const auto found = before.find(nameKey(payee.description));
    summary.payeesBefore.push_back(found == before.end() ? Money{0, summary.currency}
                                                         : found->second.expense);
  }
}

void readShownMonths(YearSummary& summary) {
  const Month current = book::currentMonth();
  summary.runs = current.year() == summary.year;
  if (!summary.runs) return;
  const auto isShown = [&](const YearSummary::Month& month) {
    return month.month <= current || month.sums.transactions > 0;
  };
  const auto last = std::find_if(summary.months.rbegin(), summary.months.rend(), isShown);
  summary.shownMonths = static_cast<std::size_t>(summary.months.rend() - last);
}

}  // namespace

YearSummary summarize(const Book& book, const Year& year, const CurrencyCode& currency) {
  const ComparedPeriods periods{Period::of(year), Period::of(year.before())};
  const book::Counted counted = book.counted({periods.before.first, periods.period.last});
  const PeriodSums sums = sumsOf(book, periods, counted.largest);
  YearSummary summary(year, currency);
  readPeriods(summary, book, periods, sums, counted);
  readMonths(summary, sums.categories);
  readCategoryMonths(summary, sums.categories);
  readPayeesBefore(summary, sums.descriptions);
  readShownMonths(summary);
  return summary;
}

}  // namespace kivo::overview
