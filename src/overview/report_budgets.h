// The part of the report that shows the budgets of its month.
#pragma once

#include <vector>

#include "overview/budget_figures.h"
#include "overview/html_writer.h"

namespace kivo::overview::ReportBudgets {

/// Writes a table of `budgets` with what is spent, in percent too, what is left, and a bar for
/// each; nothing when there are none.
void write(HtmlWriter& html, const std::vector<BudgetFigures>& budgets);

}  // namespace kivo::overview::ReportBudgets
