// One spelling for each category of the book.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::book {

class Database;

class ChangeNotes;

/// Returns `category` in the one spelling of the book: that of the transactions that have it, those
/// of the entry `except` left out; else that of the standard category; else as given. Names are
/// compared as payees are (`foldedName`), level by level where a colon parts them, so that
/// "food:tea" is "Food:tea" beside "Food:Coffee". The name by which answers keep a transfer out of
/// totals becomes "Transfer". Throws BookFailure.
std::string spelledCategory(Database& database, std::string_view category, std::int64_t except = 0);

/// As `Book::categories`.
std::vector<std::string> knownCategories(Database& database);

/// As `spelledCategory`, and stores the spelling, whose change `notes` gets. Call it in the
/// transaction that writes the category to the entry `except`, 0 for a new one.
std::string keepCategory(Database& database, ChangeNotes& notes, std::string_view category,
                         std::int64_t except = 0);

}  // namespace kivo::book
