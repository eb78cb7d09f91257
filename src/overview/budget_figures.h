// What is spent of the budgets of a month. Shows nothing: BudgetView does.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"
#include "overview/period_summary.h"

namespace kivo::overview {

/// A budget, and the expense of its category, both in the book's currency.
struct BudgetFigures {
  std::string category;
  money::Money amount;
  /// As in the summary of the month: less the refunds, so that it may be below zero.
  money::Money spent;

  /// Returns the sum that may still be spent; below zero when more was.
  [[nodiscard]] money::Money left() const;
  /// Returns how much of the budget is spent, in whole percent, rounded down; 0 when less than
  /// nothing.
  [[nodiscard]] std::int64_t percent() const;
};

/// Returns the figures of the budgets of `month` in the currency of its summary `figures`, by the
/// names of their categories. Leaves out budgets in other currencies.
std::vector<BudgetFigures> budgetFigures(const book::Book& book, const money::Month& month,
                                         const PeriodSummary& figures);

}  // namespace kivo::overview
