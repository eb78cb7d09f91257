// The parts of the report that say what waits in review and what was ignored.
#pragma once

#include <functional>
#include <string>

#include "overview/html_writer.h"
#include "overview/report_figures.h"

namespace kivo::overview::ReportReview {

/// Writes one sentence that says how many entries wait; nothing when none does.
void writeNotice(HtmlWriter& html, const ReportFigures& figures);

/// Writes one sentence that says how many messages with a sum were not booked; nothing when none
/// was.
void writeIgnored(HtmlWriter& html, const PeriodSummary& summary);

/// Writes a table of the entries that wait, with id, payee, message and sum; nothing when none
/// does. `sumOf` formats the sum of an entry, empty when it has none.
void writeList(HtmlWriter& html, const ReportFigures& figures,
               const std::function<std::string(const book::LedgerEntry&)>& sumOf);

}  // namespace kivo::overview::ReportReview
