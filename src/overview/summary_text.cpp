// The summary of a month for a terminal.
#include <algorithm>
#include <array>
#include <string>

#include "overview/budget_view.h"
#include "overview/recurring_view.h"
#include "overview/sum_format.h"
#include "overview/summary_parts.h"
#include "overview/summary_view.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::overview {

namespace {

using linux_platform::columnsOf;
using linux_platform::escapedControls;
using SummaryParts::gap;
using SummaryParts::longestBar;
using SummaryParts::shortestBar;
using SummaryParts::shortestName;

constexpr std::size_t mostPayeesShown = 5;

// The lines of one summary: sums of this month and of the one before, with a name at the end.
class MonthLines {
 public:
  MonthLines(const MonthSummary& summary, const SummaryView::Look& look)
      : summary_(summary),
        look_(look),
        sums_(summary.currency),
        pairs_(summary.currency, summary.month.shortName(), summary.month.before().shortName()) {
    pairs_.add(summary.sums.expense, summary.previous.expense);
    pairs_.add(summary.sums.income, summary.previous.income);
    pairs_.add(summary.sums.transfer, summary.previous.transfer);
    for (const MonthSummary::Category& category : summary.categories) {
      pairs_.add(category.expense, category.previous);
    }
  }

  [[nodiscard]] std::string totals() const {
    std::string lines = pairs_.at(0) + "\n";
    constexpr std::array names{"Spent", "Received", "Transferred"};
    for (std::size_t row = 1; row <= totalRows; ++row) {
      const std::string line = pairs_.at(row) + std::string(gap) + names.at(row - 1);
      const bool isSpent = row == 1;
      lines += line;
      if (isSpent) lines += SummaryParts::refunds(summary_.sums, look_, columnsOf(line));
      lines += "\n";
    }
    return lines;
  }

  [[nodiscard]] std::string categories() const {
    std::int64_t largest = 0;
    std::size_t longest = 0;
    for (const MonthSummary::Category& category : summary_.categories) {
      largest = std::max(largest, category.expense.minorUnits);
      longest = std::max(longest, columnsOf(escapedControls(category.name)));
    }
    const std::size_t left = room(columnsOf(pairs_.at(0)) + gap.size());
    const std::size_t barAndGap = shortestBar + gap.size();
    const std::size_t nameWidth =
        std::min({longest, SummaryParts::longestName,
                  std::max(shortestName, left - std::min(left, barAndGap))});
    const std::size_t forBar = left - std::min(left, nameWidth + gap.size());
    const std::size_t barWidth = forBar < shortestBar ? 0 : std::min(forBar, longestBar);
    std::string lines;
    for (std::size_t at = 0; at < summary_.categories.size(); ++at) {
      const MonthSummary::Category& category = summary_.categories[at];
      lines += pairs_.at(totalRows + 1 + at) + std::string(gap);
      if (barWidth > 0)
        lines += SummaryParts::bar(category.expense.minorUnits, largest, barWidth, look_) +
                 std::string(gap);
      lines += linux_platform::cutTo(nameWidth, escapedControls(category.name)) + "\n";
    }
    return lines;
  }

  [[nodiscard]] std::string payees() const {
    RightAligned sums("");
    RightAligned counts("");
    const std::size_t count = std::min(summary_.payees.size(), mostPayeesShown);
    for (std::size_t at = 0; at < count; ++at) {
      sums.add(sums_.plain(summary_.payees[at].expense));
      counts.add(std::to_string(summary_.payees[at].transactions) + "x");
    }
    std::string lines;
    for (std::size_t at = 0; at < count; ++at) {
      const std::string front =
          sums.at(at + 1) + std::string(gap) + counts.at(at + 1) + std::string(gap);
      const std::string name = escapedControls(summary_.payees[at].description);
      const std::size_t left = std::max(shortestName, room(columnsOf(front)));
      lines += front + linux_platform::cutTo(left, name) + "\n";
    }
    return lines;
  }

 private:
  static constexpr std::size_t totalRows = 3;

  // The columns that are left of a line.
  [[nodiscard]] std::size_t room(std::size_t taken) const {
    return SummaryParts::roomIn(look_, taken);
  }

  const MonthSummary& summary_;
  SummaryView::Look look_;
  SumFormat sums_;
  PairedSums pairs_;
};

std::string dueSection(const MonthSummary& summary, const SummaryView::Look& look) {
  if (!summary.today) return "";
  return SummaryParts::section(
      "Each month", RecurringView::dueLines(summary.recurring, summary.today->date, look.width),
      look);
}

}  // namespace

std::string SummaryView::text(const MonthSummary& summary, const money::Month& today,
                              const Look& look) {
  const std::string month = summary.month.name();
  const std::string notes =
      SummaryParts::section("Budgets", BudgetView::bars(summary.budgets, look), look) +
      dueSection(summary, look) + SummaryParts::notes(summary, look);
  if (summary.isEmpty()) return "Nothing is booked in " + month + ".\n" + notes;
  const bool runs = summary.month == today;
  const MonthLines lines(summary, look);
  return SummaryParts::bold(month + (runs ? " so far" : ""), look) + ", in " +
         summary.currency.text() + "\nbeside " + (runs ? "all of " : "") +
         summary.month.before().name() + "\n\n" + lines.totals() +
         SummaryParts::section("Spent on", lines.categories(), look) +
         SummaryParts::section("Biggest payees", lines.payees(), look) +
         SummaryParts::section("Besides, in other currencies",
                               SummaryParts::otherCurrencies(summary), look) +
         notes;
}

}  // namespace kivo::overview
