// The exchange rates that are kept in the book. Converts nothing.
#pragma once

#include <optional>
#include <vector>

#include "book/stored_rate.h"
#include "money/day.h"
#include "money/rate.h"

struct sqlite3;

namespace kivo::book {

/// As the functions of Book. They throw BookFailure.
void setRate(sqlite3* database, const money::CurrencyCode& currency, const money::Rate& rate,
             const std::optional<money::Day>& from);
std::optional<money::Rate> rateOf(sqlite3* database, const money::CurrencyCode& currency,
                                  const money::Day& day);
/// Returns whether there is a rate that `removeRates` would remove.
bool hasRate(sqlite3* database, const money::CurrencyCode& currency,
             const std::optional<money::Day>& from);
void removeRates(sqlite3* database, const money::CurrencyCode& currency,
                 const std::optional<money::Day>& from);
std::vector<StoredRate> allRates(sqlite3* database);

}  // namespace kivo::book
