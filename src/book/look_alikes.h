// Finds the entries that look alike. Knows no rule.
#pragma once

#include <cstdint>
#include <optional>

#include "book/book.h"

namespace kivo::book {

class Database;

/// Returns the id of the first entry before `entry` that it looks like; nullopt when there is none.
/// Throws BookFailure, as the others do.
std::optional<std::int64_t> firstAlike(Database& database, const LedgerEntry& entry);
/// Marks again what the change or the removal of the entry `id` concerns: itself, those that looked
/// like it, and later ones that do now.
void markAlikeAgain(Database& database, std::int64_t id);
/// Marks again what taking back the command `number` concerns, whose notes are still there.
void markAlikeAgainAfter(Database& database, std::int64_t number);

}  // namespace kivo::book
