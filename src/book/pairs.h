// Joins the two messages of a transfer between a person's own accounts. The functions throw
// BookFailure.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "book/book.h"
#include "book/history.h"

namespace kivo::book {

class Database;

/// Returns the id of the first entry that is the other half of `entry`, which may be new: with the
/// same reference and sum, another own account and the other direction, two days apart at most.
/// Both are booked, have no other half and are no refunds, and a person did not part them. nullopt
/// when there is none.
std::optional<std::int64_t> otherHalf(Database& database, const LedgerEntry& entry);

/// As the functions of Book.
std::vector<LikelyPair> likelyPairs(Database& database);
bool pairEntries(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other);
bool unpairEntries(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other);

/// Writes each of two entries as the other half of the other one.
void join(Database& database, ChangeNotes& notes, std::int64_t one, std::int64_t other);
/// Parts the entry `id`, which was changed, from its other half, if they do not fit any more.
void partUnfit(Database& database, ChangeNotes& notes, std::int64_t id);
/// Does so for an entry that was booked, and joins it with its `otherHalf` if it has none.
void pairAgain(Database& database, ChangeNotes& notes, std::int64_t id);
/// Frees the other half of the entry `id`, which is to be removed.
void freeOtherHalf(Database& database, ChangeNotes& notes, std::int64_t id);
/// Makes the halves agree after the command `number` was taken back, whose notes are still there: a
/// message that was recorded since may have joined a row that was restored or removed.
void repairHalvesAfter(Database& database, std::int64_t number);

}  // namespace kivo::book
