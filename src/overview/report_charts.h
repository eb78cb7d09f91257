// The drawings of the report. Each has a text alternative; the page has the figures as tables.
#pragma once

#include <vector>

#include "overview/html_writer.h"
#include "overview/report_figures.h"

namespace kivo::overview::ReportCharts {

/// Draws expense and income of each of `months`, of which there is at least one.
void drawMonths(HtmlWriter& page, const std::vector<MonthSums>& months);

/// Draws the expense of each day of the month.
void drawDays(HtmlWriter& page, const ReportFigures& figures);

/// Draws `part` of `whole`, in one currency, as a bar without text.
void drawShare(HtmlWriter& page, const money::Money& part, const money::Money& whole);

}  // namespace kivo::overview::ReportCharts
