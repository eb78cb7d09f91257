// Takes texts that were replaced out of the files of a database. Does not know which texts those
// are.
#pragma once

struct sqlite3;

namespace kivo::linux_platform {

/// Notes on the disk, as an empty file beside the database, that a text is about to be replaced
/// whose bytes must not stay behind. To be called in the transaction that replaces it, before its
/// commit: when the process dies or the power fails in between, the next to open the
/// database erases it.
void oweErasure(sqlite3* database);

/// Rebuilds the database without what was replaced, and truncates its WAL, in which the earlier
/// states are; once that is durable, removes the note. Waits for no other process: where one is
/// reading or writing at this moment, the note stays. To be called outside a transaction. Changes
/// no value.
void eraseReplacedText(sqlite3* database);

/// As `eraseReplacedText` when that is owed; else does nothing.
void eraseIfOwed(sqlite3* database);

}  // namespace kivo::linux_platform
