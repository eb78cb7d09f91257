// The summary of a year for a terminal.
#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "overview/summary_parts.h"
#include "overview/summary_view.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::overview {

namespace {

using linux_platform::columnsOf;
using linux_platform::cutTo;
using linux_platform::escapedControls;
using money::Money;
using SummaryParts::gap;
using SummaryParts::longestBar;
using SummaryParts::shortestBar;
using SummaryParts::shortestName;

// A column for each month.
constexpr std::string_view initials = "JFMAMJJASOND";

// The sums of some months as one character each, the largest as a whole one.
std::string smallBars(const std::vector<Money>& months, const SummaryView::Look& look) {
  constexpr std::array<std::string_view, 8> eighths{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  const std::int64_t largest = std::ranges::max_element(months, {}, &Money::minorUnits)->minorUnits;
  std::string drawn;
  for (const Money& month : months) {
    if (month.minorUnits <= 0) {
      drawn += ' ';
      continue;
    }
    const double share = static_cast<double>(month.minorUnits) / static_cast<double>(largest);
    drawn += eighths.at(static_cast<std::size_t>(share * 7.999));
  }
  return SummaryParts::inBarColour(drawn, look);
}

// The lines of one summary: sums of this year and of the one before, with a name at the end.
class YearLines {
 public:
  YearLines(const YearSummary& summary, const SummaryView::Look& look)
      : summary_(summary), look_(look) {}

  [[nodiscard]] std::string totals() const {
    const MovedSums& now = summary_.sums;
    const MovedSums& before = summary_.previous;
    PairedSums pairs = pairedSums();
    pairs.add(now.expense, before.expense);
    pairs.add(now.income, before.income);
    pairs.add(now.transfer, before.transfer);
    pairs.add(now.saving(), before.saving());
    std::string lines = pairs.at(0) + "\n";
    constexpr std::array names{"Spent", "Received", "Transferred", "Saved"};
    for (std::size_t row = 1; row <= names.size(); ++row) {
      const std::string line = pairs.at(row) + std::string(gap) + names.at(row - 1);
      const bool isSpent = row == 1;
      lines += line;
      if (isSpent) lines += SummaryParts::refunds(now, look_, columnsOf(line));
      lines += "\n";
    }
    return lines;
  }

  [[nodiscard]] std::string months() const {
    const SumFormat format(summary_.currency);
    RightAligned spent("Spent");
    RightAligned before(summary_.year.before().text());
    RightAligned received("Received");
    RightAligned saved("Saved");
    std::int64_t largest = 0;
    for (const auto& [month, sums, previous] : summary_.months) {
      spent.add(format.plain(sums.expense));
      before.add(format.plain(previous));
      received.add(format.plain(sums.income));
      saved.add(format.plain(sums.saving()));
      largest = std::max(largest, sums.expense.minorUnits);
    }
    constexpr std::size_t nameWidth = 3;
    const std::size_t sums = spent.width() + received.width() + saved.width() + 3 * gap.size();
    const std::size_t both = sums + before.width() + gap.size();
    const bool showsBefore = SummaryParts::roomIn(look_, both) >= nameWidth;
    const std::size_t room = SummaryParts::roomIn(look_, (showsBefore ? both : sums) + nameWidth);
    const std::size_t barWidth =
        room < shortestBar + gap.size() ? 0 : std::min(room - gap.size(), longestBar);
    std::string lines;
    for (std::size_t row = 0; row <= summary_.shownMonths; ++row) {
      lines += spent.at(row) + std::string(gap);
      if (showsBefore) lines += before.at(row) + std::string(gap);
      lines += received.at(row) + std::string(gap) + saved.at(row);
      if (row > 0) {
        const auto& [month, of, previous] = summary_.months[row - 1];
        lines += gap;
        if (barWidth > 0) {
          lines += SummaryParts::bar(of.expense.minorUnits, largest, barWidth, look_);
          lines += gap;
        }
        lines += month.shortName();
      }
      lines += "\n";
    }
    return lines;
  }

  [[nodiscard]] std::string categories() const {
    if (summary_.categories.empty()) return "";
    PairedSums pairs = pairedSums();
    for (const YearSummary::Category& category : summary_.categories) {
      pairs.add(category.expense, category.previous);
    }
    const std::size_t barsAndGap = initials.size() + gap.size();
    std::size_t room = SummaryParts::roomIn(look_, columnsOf(pairs.at(0)) + gap.size());
    const bool showsBars = room >= barsAndGap + shortestName;
    if (showsBars) room -= barsAndGap;
    std::string lines = pairs.at(0);
    if (showsBars) lines += std::string(gap) + std::string(initials);
    lines += "\n";
    for (std::size_t at = 0; at < summary_.categories.size(); ++at) {
      lines += pairs.at(at + 1) + std::string(gap);
      if (showsBars) lines += smallBars(summary_.categoryMonths[at], look_) + std::string(gap);
      const std::string name = escapedControls(summary_.categories[at].name);
      lines += cutTo(std::max(room, shortestName), name) + "\n";
    }
    return lines;
  }

  [[nodiscard]] std::string payees() const {
    if (summary_.payees.empty()) return "";
    PairedSums pairs = pairedSums();
    RightAligned counts("");
    for (std::size_t at = 0; at < summary_.payees.size(); ++at) {
      pairs.add(summary_.payees[at].expense, summary_.payeesBefore[at]);
      counts.add(std::to_string(summary_.payees[at].transactions) + "x");
    }
    std::string lines = pairs.at(0) + "\n";
    for (std::size_t at = 0; at < summary_.payees.size(); ++at) {
      const std::string front =
          pairs.at(at + 1) + std::string(gap) + counts.at(at + 1) + std::string(gap);
      const std::string name = escapedControls(summary_.payees[at].description);
      const std::size_t room = SummaryParts::roomIn(look_, columnsOf(front));
      lines += front + cutTo(std::max(room, shortestName), name) + "\n";
    }
    return lines;
  }

 private:
  [[nodiscard]] PairedSums pairedSums() const {
    return {summary_.currency, summary_.year.text(), summary_.year.before().text()};
  }

  const YearSummary& summary_;
  SummaryView::Look look_;
};

}  // namespace

std::string SummaryView::text(const YearSummary& summary, const Look& look) {
  const std::string year = summary.year.text();
  const std::string notes = SummaryParts::notes(summary, look);
  if (summary.isEmpty()) return "Nothing is booked in " + year + ".\n" + notes;
  const YearLines lines(summary, look);
  return SummaryParts::bold(year + (summary.runs ? " so far" : ""), look) + ", in " +
         summary.currency.text() + "\nbeside " + (summary.runs ? "all of " : "") +
         summary.year.before().text() + "\n\n" + lines.totals() +
         SummaryParts::section("Months", lines.months(), look) +
         SummaryParts::section("Spent on", lines.categories(), look) +
         SummaryParts::section("Biggest payees", lines.payees(), look) +
         SummaryParts::section("Besides, in other currencies",
                               SummaryParts::otherCurrencies(summary), look) +
         notes;
}

}  // namespace kivo::overview
