#include "overview/month_summary.h"

#include "book/current_day.h"

namespace kivo::overview {

using book::Book;
using book::Counted;
using book::currentDay;
using money::CurrencyCode;
using money::Kind;
using money::Month;
using money::Period;

namespace {

void readToday(MonthSummary& summary, const Book& book, std::int64_t largest) {
  const money::Day date = currentDay();
  if (date.month() != summary.month) return;
  TodaysExpenses& today =
      summary.today.emplace(TodaysExpenses{date, {0, summary.currency}, {0, summary.currency}});
  for (const auto& group : book.sumsByDay({date, date}, largest)) {
    if (group.kind != Kind::expense || group.sum.currency != summary.currency) continue;
    today.expense += group.sum;
    today.expenses += group.transactions - group.refunds;
    today.refunded += group.refunded;
  }
}

}  // namespace

MonthSummary summarize(const Book& book, const Month& month, const CurrencyCode& currency) {
  return summarize(book, month, currency, book.counted(Period::of(month.before(), month)));
}

MonthSummary summarize(const Book& book, const Month& month, const CurrencyCode& currency,
                       const Counted& counted) {
  MonthSummary summary(month, currency);
  const ComparedPeriods periods{Period::of(month), Period::of(month.before())};
  readPeriods(summary, book, periods, sumsOf(book, periods, counted.largest), counted);
  readToday(summary, book, counted.largest);
  summary.budgets = budgetFigures(book, month, summary);
  return summary;
}

void readRecurring(MonthSummary& summary, const Book& book) {
  if (summary.today) summary.recurring = recurringPayments(book, summary.today->date);
}

}  // namespace kivo::overview
