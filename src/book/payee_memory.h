// The user's corrections for a payee, and the entries that look alike.
#pragma once

#include <cstdint>
#include <optional>

#include "book/book.h"

struct sqlite3;

namespace kivo::book {

/// Applies the user's corrections for the payee of `entry`. Throws BookFailure, as the others do.
void applyCorrection(sqlite3* database, LedgerEntry& entry);
/// Keeps the description and the category of `change`, as `entry` now has them, for its payee.
void keepCorrection(sqlite3* database, const LedgerEntry& entry, const EntryChange& change);

/// Returns the id of the first entry before `entry` that it looks like; nullopt when there is none.
std::optional<std::int64_t> firstAlike(sqlite3* database, const LedgerEntry& entry);
/// Marks again what the change or the removal of the entry `id` concerns: itself, those that looked
/// like it, and later ones that do now.
void markAlikeAgain(sqlite3* database, std::int64_t id);

}  // namespace kivo::book
