// The figures of a month, from the book. Shows nothing: SummaryView and ReportPage do.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "book/book.h"
#include "overview/budget_figures.h"
#include "overview/period_summary.h"
#include "overview/recurring_payments.h"

namespace kivo::overview {

/// The expenses of the current day, less its refunds, and their number.
struct TodaysExpenses {
  money::Day date;
  money::Money expense;
  money::Money refunded;
  std::int64_t expenses = 0;
};

/// The figures of a month and of the month before.
struct MonthSummary : PeriodSummary {
  /// Of `ofMonth` in a book kept in `bookCurrency`; without figures.
  MonthSummary(const money::Month& ofMonth, const money::CurrencyCode& bookCurrency)
      : PeriodSummary(bookCurrency), month(ofMonth) {}

  money::Month month;
  /// Absent unless the month is the current one.
  std::optional<TodaysExpenses> today = {};
  /// By the names of their categories.
  std::vector<BudgetFigures> budgets = {};
  /// The payments that come each month; read by `readRecurring`.
  std::vector<RecurringPayment> recurring = {};
};

/// Reads the figures of `month` of a book kept in `currency`. Takes a few queries: call it
/// `atOneMoment` of the book.
MonthSummary summarize(const book::Book& book, const money::Month& month,
                       const money::CurrencyCode& currency);
/// Does so for a period that includes the month and the one before, of which the book counts
/// `counted`.
MonthSummary summarize(const book::Book& book, const money::Month& month,
                       const money::CurrencyCode& currency, const book::Counted& counted);
/// Reads `recurring` of the current month; of another one it stays empty.
void readRecurring(MonthSummary& summary, const book::Book& book);

}  // namespace kivo::overview
