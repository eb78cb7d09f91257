#include "overview/budget_view.h"

#include <algorithm>

#include "overview/sum_format.h"
#include "overview/summary_parts.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::overview {

using linux_platform::columnsOf;
using linux_platform::cutTo;
using linux_platform::escapedControls;
using platform::JSONEncoder;
using SummaryParts::gap;

std::vector<JSONEncoder> BudgetView::json(const std::vector<BudgetFigures>& budgets) {
  std::vector<JSONEncoder> objects;
  for (const BudgetFigures& budget : budgets) {
    JSONEncoder& object = objects.emplace_back();
    object.encodeString("category", budget.category);
    object.encodeString("amount", amountText(budget.amount));
    object.encodeString("spent", amountText(budget.spent));
  }
  return objects;
}

std::string BudgetView::table(const std::vector<BudgetFigures>& budgets, std::size_t width) {
  const SumFormat sums(budgets.front().amount.currency);
  RightAligned amounts("BUDGET");
  RightAligned spent("SPENT");
  RightAligned left("LEFT");
  for (const BudgetFigures& budget : budgets) {
    amounts.add(sums.plain(budget.amount));
    spent.add(sums.plain(budget.spent));
    left.add(sums.plain(budget.left()));
  }
  std::string lines;
  for (std::size_t row = 0; row <= budgets.size(); ++row) {
    std::string front = amounts.at(row);
    front.append(gap).append(spent.at(row)).append(gap).append(left.at(row)).append(gap);
    const std::size_t room = width - std::min(width, columnsOf(front));
    const std::string name = row == 0 ? "CATEGORY" : escapedControls(budgets[row - 1].category);
    lines += front + cutTo(std::max(SummaryParts::shortestName, room), name) + "\n";
  }
  return lines;
}

std::string BudgetView::bars(const std::vector<BudgetFigures>& budgets,
                             const SummaryView::Look& look) {
  if (budgets.empty()) return "";
  const SumFormat sums(budgets.front().amount.currency);
  RightAligned spent("");
  RightAligned amounts("");
  RightAligned shares("");
  for (const BudgetFigures& budget : budgets) {
    spent.add(sums.plain(budget.spent));
    amounts.add(sums.plain(budget.amount));
    shares.add(std::to_string(budget.percent()) + " %");
  }
  std::string lines;
  for (std::size_t at = 0; at < budgets.size(); ++at) {
    const BudgetFigures& budget = budgets[at];
    const std::string front = spent.at(at + 1) + " of " + amounts.at(at + 1) + std::string(gap) +
                              shares.at(at + 1) + std::string(gap);
    const std::size_t room = SummaryParts::roomIn(look, columnsOf(front));
    const std::int64_t filled = std::min(budget.spent.minorUnits, budget.amount.minorUnits);
    const auto bar = [&](std::size_t columns) {
      return SummaryParts::bar(filled, budget.amount.minorUnits, columns, look);
    };
    const std::size_t longest = SummaryParts::longestBar;
    const std::string name = escapedControls(budget.category);
    const bool isWide = room >= longest + gap.size() + SummaryParts::shortestName;
    const std::size_t forName = isWide ? room - longest - gap.size() : room;
    lines += front + (isWide ? bar(longest) + std::string(gap) : "") +
             cutTo(std::max(SummaryParts::shortestName, forName), name) + "\n";
    if (!isWide) lines += bar(std::min(longest, look.width)) + "\n";
  }
  return lines;
}

}  // namespace kivo::overview
