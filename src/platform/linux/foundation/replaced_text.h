// Takes texts that were replaced out of the files of a suite. Does not know which texts those are.
#pragma once

struct sqlite3;

namespace kivo::linux_platform {

/// Notes on the disk, as an empty file beside the database, that a text is about to be replaced
/// whose bytes must not stay behind. To be called before the commit that replaces it, so that the
/// death of the process in between is made up for by whoever opens the suite next.
void oweErasure(sqlite3* database);

/// Writes the database anew without what was replaced, and empties its write-ahead log, in which
/// the earlier states lie; then nothing is owed any more. Waits for nobody: where another process
/// is reading or writing at this moment, it is owed from now on. To be called outside a
/// transaction. Changes no value.
void eraseReplacedText(sqlite3* database);

/// As `eraseReplacedText` when that is owed; else does nothing.
void eraseIfOwed(sqlite3* database);

}  // namespace kivo::linux_platform
