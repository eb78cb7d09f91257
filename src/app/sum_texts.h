// Sums and days as the window shows them.
#pragma once

#include <map>
#include <string>

#include "book/ledger_entry.h"
#include "money/day.h"
#include "money/money.h"
#include "overview/sum_format.h"

namespace kivo::app {

/// Writes sums in any currency in the device's locale. Not thread-safe.
class SumTexts {
 public:
  /// Returns `sum` with its currency: "EGP 1,250.00".
  const overview::SumFormat& of(const money::CurrencyCode& currency);
  std::string text(const money::Money& sum) { return of(sum.currency).withCurrency(sum); }
  /// Returns the sum of `entry` with "+" before what came in; "?" when it is unknown.
  std::string text(const book::LedgerEntry& entry);

 private:
  std::map<std::string, overview::SumFormat> formats_;
};

/// Returns "Today", "Yesterday", or the day in words: "21 November 2026".
std::string dayName(const money::Day& day, const money::Day& today);
/// Returns the day in words without the year: "21 November".
std::string shortDayName(const money::Day& day);

}  // namespace kivo::app
