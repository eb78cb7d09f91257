// The parts of a summary for a terminal that those of a month and of a year have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "overview/period_summary.h"
#include "overview/sum_format.h"
#include "overview/summary_view.h"

namespace kivo::overview {

/// A column of texts that are aligned at its right edge.
class RightAligned {
 public:
  /// The heading is the row 0.
  explicit RightAligned(std::string heading);

  /// Adds a row.
  void add(const std::string& sum);
  [[nodiscard]] std::size_t width() const { return width_; }
  /// Returns the text of a row, padded to `width`.
  [[nodiscard]] std::string at(std::size_t row) const;

 private:
  std::vector<std::string> texts_;
  std::size_t width_ = 0;
};

/// The sums of a period beside those of the period before, in two columns. The heading is the row
/// 0.
class PairedSums {
 public:
  PairedSums(const money::CurrencyCode& currency, std::string now, std::string before);

  void add(const money::Money& now, const money::Money& before);
  /// Returns both sums of a row.
  [[nodiscard]] std::string at(std::size_t row) const;

 private:
  SumFormat sums_;
  RightAligned now_;
  RightAligned before_;
};

namespace SummaryParts {

/// Stands between two columns.
inline constexpr std::string_view gap = "  ";
inline constexpr std::size_t longestName = 24;
inline constexpr std::size_t shortestName = 12;
inline constexpr std::size_t longestBar = 24;
inline constexpr std::size_t shortestBar = 4;

/// Returns `text` in bold where `look` is coloured.
std::string bold(const std::string& text, const SummaryView::Look& look);
/// Returns `text` in the colour of bars where `look` is coloured.
std::string inBarColour(const std::string& text, const SummaryView::Look& look);

/// Returns `part` of `whole` as a bar that is padded to `columns`. A part below zero has no bar.
std::string bar(std::int64_t part, std::int64_t whole, std::size_t columns,
                const SummaryView::Look& look);

/// Returns what a line of `look` has left after so many columns.
std::size_t roomIn(const SummaryView::Look& look, std::size_t taken);

/// Returns a heading and its section after an empty line; nothing for an empty section.
std::string section(const char* heading, const std::string& lines, const SummaryView::Look& look);

/// Returns the expense of `sums` without its refunds, to follow a line of `taken` columns or on
/// lines of its own; nothing when nothing was refunded.
std::string refunds(const MovedSums& sums, const SummaryView::Look& look, std::size_t taken);

/// Returns a line for each sum in another currency than the book's.
std::string otherCurrencies(const PeriodSummary& summary);

/// Returns the entries that are left out, and what waits in review and was ignored, each after an
/// empty line.
std::string notes(const PeriodSummary& summary, const SummaryView::Look& look);

}  // namespace SummaryParts
}  // namespace kivo::overview
