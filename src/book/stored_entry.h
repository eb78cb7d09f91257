// Entries as rows of the table of transactions.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "book/book.h"

namespace kivo::book {

class Database;

/// As the functions of Book with these names. They throw BookFailure.
std::vector<LedgerEntry> storedEntries(Database& database, const EntryFilter& filter);
std::vector<EntryPlace> placesOfEntries(Database& database, const EntryFilter& filter);
std::optional<LedgerEntry> storedEntry(Database& database, std::int64_t id);

/// Inserts a row for a new entry and returns its id.
std::int64_t insertEntry(Database& database, const LedgerEntry& entry);
/// Writes what a person may change of `entry`, and its state. Marks it as edited.
void writeEdited(Database& database, const LedgerEntry& entry);
/// Writes the description, the category and the kind of `entry`. Does not mark it as edited.
void writeRuled(Database& database, const LedgerEntry& entry);
/// Books the entry `id` with the sum `amount`, which was converted from `original`.
void writeBookedSum(Database& database, std::int64_t id, const money::Money& amount,
                    const std::optional<money::Money>& original);
/// Writes all that `entry` is read as, and books it. Returns false when it is neither booked nor in
/// review, or was edited.
bool writeBooked(Database& database, const LedgerEntry& entry);

}  // namespace kivo::book
