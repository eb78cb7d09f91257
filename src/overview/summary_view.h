// The summaries of a month and of a year as JSON and for a terminal.
#pragma once

#include <cstddef>
#include <string>

#include "overview/month_summary.h"
#include "overview/year_summary.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::overview::SummaryView {

/// Returns `summary` as a JSON object, all members texts or arrays of such objects: "month",
/// "currency", "expense" (less "refunded"), "refunded", "income", "transfer", "transactions",
/// "review", "ignored", "today"
/// (absent unless the month is the current one), "previous", "categories", "payees",
/// "other_currencies", "left_out", "budgets" (as `BudgetView::json`). Sums are plain decimals with
/// the currency's decimals.
platform::JSONEncoder json(const MonthSummary& summary);
/// Does so for a year: without "month", "today" and "budgets", with "year", "saving" beside the
/// other sums, "months" (twelve), and "months" and "previous" in each category and "previous" in
/// each payee.
platform::JSONEncoder json(const YearSummary& summary);

/// The width and the style of a terminal.
struct Look {
  std::size_t width = 80;
  enum class Style { plain, coloured } style = Style::plain;
};

/// Returns `summary` as text, in the device's locale, without control characters. The names come
/// last in their lines, so that one that is written from right to left moves no sum. Lines are no
/// longer than the width of `look`, unless the sums alone are. `today` is the current month.
std::string text(const MonthSummary& summary, const money::Month& today, const Look& look);
/// Does so for a year: months, categories with a small bar for each month, payees.
std::string text(const YearSummary& summary, const Look& look);

}  // namespace kivo::overview::SummaryView
