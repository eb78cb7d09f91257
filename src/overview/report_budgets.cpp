#include "overview/report_budgets.h"

#include <algorithm>

#include "overview/report_charts.h"
#include "overview/sum_format.h"

namespace kivo::overview {

void ReportBudgets::write(HtmlWriter& html, const std::vector<BudgetFigures>& budgets) {
  if (budgets.empty()) return;
  const SumFormat sums(budgets.front().amount.currency);
  html.markup("<section class=\"sheet\" aria-labelledby=\"budgets\">")
      .markup("<h2 id=\"budgets\">Budgets</h2><table><thead><tr>")
      .markup("<th scope=\"col\">Category</th><th scope=\"col\" class=\"sum\">Spent</th>")
      .markup("<th scope=\"col\" class=\"sum\">Budget</th>")
      .markup("<th scope=\"col\" class=\"sum\">Left</th></tr></thead><tbody>");
  for (const BudgetFigures& budget : budgets) {
    html.markup("<tr><th scope=\"row\">").name(budget.category).markup(" <small>");
    html.count(budget.percent()).markup(" %</small>");
    const money::Money filled{std::min(budget.spent.minorUnits, budget.amount.minorUnits),
                              budget.amount.currency};
    ReportCharts::drawShare(html, filled, budget.amount);
    html.markup("</th>");
    for (const money::Money& sum : {budget.spent, budget.amount, budget.left()}) {
      html.markup("<td class=\"sum\">").amount(sums.plain(sum)).markup("</td>");
    }
    html.markup("</tr>\n");
  }
  html.markup("</tbody></table></section>\n");
}

}  // namespace kivo::overview
