// Counts and adds booked entries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"

struct sqlite3;

namespace kivo::book {

/// As Book::counted. Throws BookFailure, as the next does.
Counted countedBetween(sqlite3* database, const std::string& from, const std::string& to);
/// As Book::sums.
std::vector<GroupSum> sumsBetween(sqlite3* database, Grouping grouping, const std::string& from,
                                  const std::string& to, std::int64_t largest);

}  // namespace kivo::book
