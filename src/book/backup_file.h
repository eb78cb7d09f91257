// The bytes of a backup file: whether they are one, and all of them. Knows no table.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace kivo::book {

/// SQLite's application_id of a backup: "KvBk" in ASCII.
inline constexpr std::int64_t backupApplicationId = 0x4B76426B;
/// Its user_version, the form of the backup; the book in it has a version of its own.
inline constexpr std::int64_t backupVersion = 1;

// The file is a SQLite database, and behind it the SHA-256 of its bytes, which notices what
// SQLite's checks do not: a flipped bit in a sum.

/// Appends the digest to the database `path`, which ends with its last page. Throws Failure, with
/// the reason alone.
void seal(const std::filesystem::path& path);

/// Returns the database in the backup `path`. Throws Failure with a sentence that names `path` when
/// it cannot be read, is no backup of a known version, or is not as it was written.
std::string backupBytes(const std::filesystem::path& path);

/// Throws Failure, with the reason alone, when a file that is neither empty nor a backup is at
/// `path`.
void requireReplaceable(const std::filesystem::path& path);

}  // namespace kivo::book
