// Budgets and their expenses as JSON and for a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "overview/budget_figures.h"
#include "overview/summary_view.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::overview::BudgetView {

/// Returns an object for each budget with the texts "category", "amount" and "spent"; sums are
/// plain decimals with the currency's decimals.
std::vector<platform::JSONEncoder> json(const std::vector<BudgetFigures>& budgets);

/// Returns a table of budgets, expenses and what is left, in the device's locale; the names come
/// last and are cut to `width` columns. There is at least one budget.
std::string table(const std::vector<BudgetFigures>& budgets, std::size_t width);

/// Returns a line for each budget: expense, budget, share in percent, a bar and the name. Where
/// lines are too short for it, the bar has a line of its own. Empty when there are no budgets.
std::string bars(const std::vector<BudgetFigures>& budgets, const SummaryView::Look& look);

}  // namespace kivo::overview::BudgetView
