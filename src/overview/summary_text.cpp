// The summary of a month for a terminal.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "overview/sum_format.h"
#include "overview/summary_view.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::overview {

using money::Money;

namespace {

using linux_platform::columnsOf;
using linux_platform::escapedControls;

constexpr std::string_view gap = "  ";
constexpr std::size_t mostPayeesShown = 5;
constexpr std::size_t longestName = 24;
constexpr std::size_t shortestName = 12;
constexpr std::size_t longestBar = 24;
constexpr std::size_t shortestBar = 4;

std::string bold(const std::string& text, const SummaryView::Look& look) {
  if (look.style == SummaryView::Look::Style::plain) return text;
  return "\x1b[1m" + text + "\x1b[0m";
}

// `part` of `whole` as a bar that is padded to `columns`.
std::string bar(std::int64_t part, std::int64_t whole, std::size_t columns,
                const SummaryView::Look& look) {
  constexpr std::array<std::string_view, 8> eighths{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  const double share = static_cast<double>(std::max<std::int64_t>(part, 0)) /
                       static_cast<double>(std::max<std::int64_t>(whole, 1));
  auto left = static_cast<std::size_t>(std::lround(share * static_cast<double>(columns * 8)));
  if (part > 0) left = std::max<std::size_t>(left, 1);
  std::string drawn;
  for (; left >= 8; left -= 8) drawn += "█";
  drawn += eighths.at(left);
  const std::string blanks(columns - columnsOf(drawn), ' ');
  if (look.style == SummaryView::Look::Style::plain) return drawn + blanks;
  return "\x1b[36m" + drawn + "\x1b[0m" + blanks;
}

// A column of texts that are aligned at its right edge.
class RightAligned {
 public:
  explicit RightAligned(std::string heading) : texts_{std::move(heading)} {
    width_ = columnsOf(texts_[0]);
  }

  void add(const std::string& sum) {
    // In a locale with digits of a right-to-left script, a mark keeps two sums from changing
    // places.
    constexpr std::string_view leftToRight = "\u200e";
    const bool isAscii = std::all_of(sum.begin(), sum.end(), [](char c) { return c > 0; });
    texts_.push_back(isAscii ? sum : sum + std::string(leftToRight));
    width_ = std::max(width_, columnsOf(sum));
  }
  [[nodiscard]] std::size_t width() const { return width_; }
  // The heading is the row 0.
  [[nodiscard]] std::string at(std::size_t row) const {
    return std::string(width_ - columnsOf(texts_[row]), ' ') + texts_[row];
  }

 private:
  std::vector<std::string> texts_;
  std::size_t width_ = 0;
};

// The lines of one summary: sums of this month and of the one before, with a name at the end.
class Lines {
 public:
  Lines(const MonthSummary& summary, const SummaryView::Look& look)
      : summary_(summary),
        look_(look),
        sums_(summary.currency),
        now_(summary.month.shortName()),
        before_(summary.month.before().shortName()) {
    for (const Money& sum : {summary.sums.expense, summary.sums.income, summary.sums.transfer}) {
      now_.add(sums_.plain(sum));
    }
    for (const Money& sum :
         {summary.previous.expense, summary.previous.income, summary.previous.transfer}) {
      before_.add(sums_.plain(sum));
    }
    for (const MonthSummary::Category& category : summary.categories) {
      now_.add(sums_.plain(category.expense));
      before_.add(sums_.plain(category.previous));
    }
  }

  [[nodiscard]] std::string totals() const {
    std::string lines = pair(0) + "\n";
    constexpr std::array names{"Spent", "Received", "Transferred"};
    for (std::size_t row = 1; row <= totalRows; ++row) {
      const std::string line = pair(row) + std::string(gap) + names.at(row - 1);
      lines += line + (row == 1 ? refunds(columnsOf(line)) : "") + "\n";
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
    const std::size_t left = room(columnsOf(pair(0)) + gap.size());
    const std::size_t barAndGap = shortestBar + gap.size();
    const std::size_t nameWidth =
        std::min({longest, longestName, std::max(shortestName, left - std::min(left, barAndGap))});
    const std::size_t forBar = left - std::min(left, nameWidth + gap.size());
    const std::size_t barWidth = forBar < shortestBar ? 0 : std::min(forBar, longestBar);
    std::string lines;
    for (std::size_t at = 0; at < summary_.categories.size(); ++at) {
      const MonthSummary::Category& category = summary_.categories[at];
      lines += pair(totalRows + 1 + at) + std::string(gap);
      if (barWidth > 0)
        lines += bar(category.expense.minorUnits, largest, barWidth, look_) + std::string(gap);
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

  [[nodiscard]] std::string otherCurrencies() const {
    std::string lines;
    for (const MovedSums& other : summary_.otherCurrencies) {
      const SumFormat sums(other.expense.currency);
      const std::string code = other.expense.currency.text() + " ";
      for (const auto& [sum, verb] : {std::pair(&other.expense, " spent\n"),
                                      {&other.income, " received\n"},
                                      {&other.transfer, " transferred\n"}}) {
        if (sum->minorUnits != 0) lines += code + sums.plain(*sum) + verb;
      }
    }
    return lines;
  }

 private:
  static constexpr std::size_t totalRows = 3;

  // The sum above without its refunds, behind `taken` columns of its line or on lines of its own.
  [[nodiscard]] std::string refunds(std::size_t taken) const {
    const MovedSums& moved = summary_.sums;
    if (moved.refunded.minorUnits == 0) return "";
    Money before = moved.expense;
    before += moved.refunded;
    const std::string note =
        "(" + sums_.plain(before) + " less " + sums_.plain(moved.refunded) + " refunded)";
    if (columnsOf(note) < room(taken)) return " " + note;
    const std::string lines = linux_platform::wrappedTo(look_.width, note);
    return "\n" + lines.substr(0, lines.size() - 1);
  }

  [[nodiscard]] std::string pair(std::size_t row) const {
    return now_.at(row) + std::string(gap) + before_.at(row);
  }
  // The columns that are left of a line.
  [[nodiscard]] std::size_t room(std::size_t taken) const {
    return look_.width - std::min(look_.width, taken);
  }

  const MonthSummary& summary_;
  SummaryView::Look look_;
  SumFormat sums_;
  RightAligned now_;
  RightAligned before_;
};

std::string ignoredLine(const MonthSummary& summary) {
  if (summary.ignored == 0) return "";
  const bool one = summary.ignored == 1;
  return "\n" + std::to_string(summary.ignored) + (one ? " message" : " messages") + " with a sum" +
         (one ? " was" : " were") + " not booked:\nkivo-ledger ignored\n";
}

std::string reviewLine(const MonthSummary& summary) {
  if (summary.review == 0) return "";
  const bool one = summary.review == 1;
  return "\n" + std::to_string(summary.review) +
         (one ? " transaction waits" : " transactions wait") + " in review:\nkivo-ledger review\n";
}

std::string leftOutLines(const MonthSummary& summary, const SummaryView::Look& look) {
  const std::string note = leftOutNote(summary.leftOut);
  return note.empty() ? "" : "\n" + linux_platform::wrappedTo(look.width, note);
}

}  // namespace

std::string SummaryView::text(const MonthSummary& summary, const money::Month& today,
                              const Look& look) {
  const std::string month = summary.month.name();
  const std::string notes =
      leftOutLines(summary, look) + reviewLine(summary) + ignoredLine(summary);
  if (summary.isEmpty()) return "Nothing is booked in " + month + ".\n" + notes;
  const bool runs = summary.month == today;
  const Lines lines(summary, look);
  std::string text = bold(month + (runs ? " so far" : ""), look) + ", in " +
                     summary.currency.text() + "\nbeside " + (runs ? "all of " : "") +
                     summary.month.before().name() + "\n\n" + lines.totals();
  const auto add = [&](const char* heading, const std::string& section) {
    if (!section.empty()) text += "\n" + bold(heading, look) + "\n" + section;
  };
  add("Spent on", lines.categories());
  add("Biggest payees", lines.payees());
  add("Besides, in other currencies", lines.otherCurrencies());
  return text + notes;
}

}  // namespace kivo::overview
