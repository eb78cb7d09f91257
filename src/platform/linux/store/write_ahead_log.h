// The write-ahead log (WAL) of an open database.
#pragma once

struct sqlite3;

namespace kivo::linux_platform {

/// Checkpoints all of the WAL, truncates it, and syncs the truncation. SQLite leaves that unsynced:
/// after a power cut the old frames may be back, all of them or, on a file system that keeps no
/// order, the first ones only, which recovery would replay over the newer database. False when
/// another process is in the way or the disk refuses; waits as long as the busy timeout says.
bool truncateWal(sqlite3* database);

/// Whether the WAL holds nothing.
bool isWalEmpty(sqlite3* database);

}  // namespace kivo::linux_platform
