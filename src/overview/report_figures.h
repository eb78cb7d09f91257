// The figures of the report, from the book. Those of its month are a MonthSummary.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"
#include "overview/month_summary.h"

namespace kivo::overview {

struct ReportFigures {
  struct Month {
    money::Month month;
    /// In the book's currency.
    MovedSums sums;
    /// The number of transactions in all currencies.
    std::int64_t transactions = 0;
  };

  MonthSummary summary;
  /// Twelve, the summary's month last.
  std::vector<Month> months = {};
  /// The expenses of each day of the summary's month in the book's currency, the first day's first.
  std::vector<money::Money> days = {};
  /// The newest of the twelve months, `mostEntries` at most, the newest first.
  std::vector<book::LedgerEntry> entries = {};
  /// The entries in review, of any month: the newest `mostEntries` at most, the newest first.
  std::vector<book::LedgerEntry> review = {};
  /// Whether the summary's month is the current one.
  bool runs = false;

  /// So that the page opens at once, also on a phone.
  static constexpr std::int64_t mostEntries = 5000;
};

/// Returns the expenses of each day of `month` in `currency`, the first day's first, of a book that
/// counts amounts up to `largest`.
std::vector<money::Money> expensesOfDays(const book::Book& book, const money::Month& month,
                                         const money::CurrencyCode& currency, std::int64_t largest);

/// Reads the figures around `month` of a book kept in `currency`. Takes a few queries: call it
/// `atOneMoment` of the book.
ReportFigures readReport(const book::Book& book, const money::Month& month,
                         const money::CurrencyCode& currency);

}  // namespace kivo::overview
