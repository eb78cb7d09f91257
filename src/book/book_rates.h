// The exchange rates that are kept in the book. Converts nothing.
#pragma once

#include <optional>
#include <vector>

#include "book/stored_rate.h"
#include "money/day.h"
#include "money/rate.h"

namespace kivo::book {

class Database;

/// As the functions of Book. They throw BookFailure.
void setRate(Database& database, const money::CurrencyCode& currency, const money::Rate& rate,
             const std::optional<money::Day>& from);
std::optional<money::Rate> rateOf(Database& database, const money::CurrencyCode& currency,
                                  const money::Day& day);
/// Returns whether there is a rate that `removeRates` would remove.
bool hasRate(Database& database, const money::CurrencyCode& currency,
             const std::optional<money::Day>& from);
void removeRates(Database& database, const money::CurrencyCode& currency,
                 const std::optional<money::Day>& from);
std::vector<StoredRate> allRates(Database& database);

}  // namespace kivo::book
