// The write-ahead log (WAL) of an open database.
#pragma once

struct sqlite3;

namespace kivo::linux_platform {

/// Checkpoints all of the WAL in TRUNCATE mode and syncs the truncation, which SQLite does not:
/// after a power cut old frames could be back, all of them or, on a file system that does not keep
/// the order of writes, only the first ones, which recovery would replay over the newer database.
/// Waits for other processes up to the busy timeout. Returns false when one still uses the WAL, or
/// when the disk fails.
bool truncateWal(sqlite3* database);

/// Returns whether the WAL is empty; false also when its size cannot be read.
bool isWalEmpty(sqlite3* database);

}  // namespace kivo::linux_platform
