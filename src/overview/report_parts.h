// The parts of a report that the pages of a month and of a year have in common.
#pragma once

#include <string>

#include "overview/html_writer.h"
#include "overview/period_summary.h"
#include "overview/sum_format.h"

namespace kivo::overview::ReportParts {

/// Writes the beginning of a page called `title`, up to its body: a policy that loads and runs
/// nothing, and the style.
void writeHead(HtmlWriter& html, const std::string& title);

/// Writes the end of a page.
void writeFoot(HtmlWriter& html);

/// A sum beside that of the period before. `refunded` of it came back.
struct Card {
  const char* name;
  money::Money sum;
  money::Money previous;
  money::Money refunded = {};
};

/// Writes `card` into a list of class "cards"; `before` names the period before.
void writeCard(HtmlWriter& html, const SumFormat& sums, const Card& card,
               const std::string& before);

/// Writes a notice that names the entries that are left out; nothing when there are none.
void writeLeftOut(HtmlWriter& html, const PeriodSummary& summary);

/// Writes a table of the sums in other currencies; nothing when there are none.
void writeOtherCurrencies(HtmlWriter& html, const PeriodSummary& summary);

/// Writes the colours of `ReportCharts::drawMonths`.
void writeLegend(HtmlWriter& html);

}  // namespace kivo::overview::ReportParts
