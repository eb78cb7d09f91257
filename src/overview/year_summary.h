// The figures of a year, from the book. Shows nothing: YearView and YearPage do.
#pragma once

#include <vector>

#include "book/book.h"
#include "overview/period_summary.h"

namespace kivo::overview {

/// The figures of a year and of the year before.
struct YearSummary : PeriodSummary {
  struct Month {
    money::Month month;
    MovedSums sums;
    /// The expense of the same month in the year before.
    money::Money previous;
  };

  /// Of `ofYear` in a book kept in `bookCurrency`; without figures.
  YearSummary(const money::Year& ofYear, const money::CurrencyCode& bookCurrency)
      : PeriodSummary(bookCurrency), year(ofYear) {}

  money::Year year;
  /// Twelve, January first.
  std::vector<Month> months = {};
  /// The expenses of each of `categories`, in their order, in each of `months`.
  std::vector<std::vector<money::Money>> categoryMonths = {};
  /// The expenses of each of `payees`, in their order, in the year before.
  std::vector<money::Money> payeesBefore = {};
  /// The number of months to show: of a running year those up to the current month, or to a later
  /// one that has transactions.
  std::size_t shownMonths = 12;
  /// Whether the year is the current one.
  bool runs = false;
};

/// Reads the figures of `year` of a book kept in `currency`. Takes a few queries: call it
/// `atOneMoment` of the book.
YearSummary summarize(const book::Book& book, const money::Year& year,
                      const money::CurrencyCode& currency);

}  // namespace kivo::overview
