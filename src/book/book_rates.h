// The exchange rates that are kept in the book. Converts nothing.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "money/rate.h"

struct sqlite3;

namespace kivo::book {

/// As the functions of Book; `removeRate` needs one. They throw BookFailure.
void setRate(sqlite3* database, const money::CurrencyCode& currency, const money::Rate& rate);
std::optional<money::Rate> rateOf(sqlite3* database, const money::CurrencyCode& currency);
bool hasRate(sqlite3* database, const money::CurrencyCode& currency);
void removeRate(sqlite3* database, const money::CurrencyCode& currency);
std::vector<std::pair<std::string, std::string>> allRates(sqlite3* database);

}  // namespace kivo::book
