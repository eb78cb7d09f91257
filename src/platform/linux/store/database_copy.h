// Copies of databases: in memory, and as files that nobody uses yet.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/linux/store/sqlite_database.h"

namespace kivo::linux_platform {

/// Opens a database in memory that has the content `bytes` of a database file, or nothing. Null
/// when there is
/// not enough memory. Bytes that are no database fail at the first statement.
Database openInMemory(std::string_view bytes);

/// Attaches a copy of all of `source`, in memory, to `database` under `name`. Returns SQLite's
/// result code.
int attachCopy(sqlite3* database, const char* name, sqlite3* source);

/// Writes the rows of `source` into the empty file `target`, as they are at one moment, and nothing
/// that was deleted. Waits for no writer. Syncs nothing. Returns SQLite's result code.
int copyInto(const std::filesystem::path& target, sqlite3* source);

/// Opens the file `path`, which no other program uses, for changes that need not survive a crash.
/// Keeps no file beside it. Null when it cannot be opened.
Database openUnshared(const std::filesystem::path& path);

}  // namespace kivo::linux_platform
