// Erases replaced and deleted texts from the files of a database.
#pragma once

struct sqlite3;

namespace kivo::linux_platform {

/// Creates an empty file beside the database, the note that a text is about to be replaced or
/// deleted whose bytes must not remain in the files. Call it in the transaction that changes the
/// text, before its commit: when the process dies or the power fails after the commit, the next
/// `openDatabase` erases the bytes. A failure to create the note is ignored.
void oweErasure(sqlite3* database);

/// Rebuilds the database with VACUUM, which leaves no deleted bytes, and truncates its WAL, which
/// contains earlier pages. Removes the note when both succeeded. Does not wait for other processes:
/// when one of them is reading or writing, the note stays. Call it outside a transaction. Changes
/// no value.
void eraseReplacedText(sqlite3* database);

/// Calls `eraseReplacedText` when the note exists.
void eraseIfOwed(sqlite3* database);

}  // namespace kivo::linux_platform
