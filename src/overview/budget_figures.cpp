#include "overview/budget_figures.h"

#include <algorithm>

namespace kivo::overview {

using money::Money;

namespace {

Money expenseOf(const std::string& category, const PeriodSummary& figures) {
  const std::string key = nameKey(category);
  for (const PeriodSummary::Category& one : figures.categories) {
    if (nameKey(one.name) == key) return one.expense;
  }
  return {0, figures.currency};
}

}  // namespace

Money BudgetFigures::left() const {
  Money rest = amount;
  rest += Money{-spent.minorUnits, spent.currency};
  return rest;
}

std::int64_t BudgetFigures::percent() const {
  constexpr std::int64_t mostTimes = 1'000'000;  // so that the hundredfold fits
  const std::int64_t times = std::min(spent.minorUnits / amount.minorUnits, mostTimes);
  const std::int64_t rest = spent.minorUnits % amount.minorUnits;
  return std::max<std::int64_t>(times * 100 + rest * 100 / amount.minorUnits, 0);
}

std::vector<BudgetFigures> budgetFigures(const book::Book& book, const money::Month& month,
                                         const PeriodSummary& figures) {
  std::vector<BudgetFigures> found;
  for (const book::Budget& budget : book.budgets(month)) {
    if (budget.amount.currency != figures.currency) continue;
    found.push_back({budget.category, budget.amount, expenseOf(budget.category, figures)});
  }
  return found;
}

}  // namespace kivo::overview
