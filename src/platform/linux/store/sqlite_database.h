// Opens, creates and upgrades the SQLite files of this project. Knows no table.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

struct sqlite3;

namespace kivo::linux_platform {

/// Closes a database without a checkpoint, so that its WAL stays. Checkpoints and truncates a WAL
/// of 64 pages or more, unless another process uses the database.
struct CloseDatabase {
  void operator()(sqlite3* database) const;
  /// The length of the WAL in pages after the last commit; null for a database that was not opened.
  std::unique_ptr<int> walLength = nullptr;
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

/// The timeout of each call on a database that waits for other processes.
inline constexpr int busyTimeoutInMilliseconds = 10'000;

/// The suffix that `oweErasure` appends to the database's name for its note.
inline constexpr const char* erasureNote = "-unerased";

/// How the tables of one version are made from those of the version before, the first one from an
/// empty file.
struct DatabaseVersion {
  const char* sql;
  /// Runs after `sql` in the same transaction, for what SQL alone cannot do. Returns SQLite's
  /// result code and throws nothing. Null for none.
  int (*step)(sqlite3* database) = nullptr;
};

/// A kind of database file.
struct DatabaseForm {
  /// The folder's name in `dataHome`.
  std::string_view folder;
  const char* file;
  std::int64_t applicationId;
  /// Their number is the current version, stored as user_version. An upgrade over several versions
  /// is one transaction.
  std::span<const DatabaseVersion> versions;
};

/// Opens the file of `form` and upgrades an older version. Creates the folder and the file when
/// they are missing, removes the permissions of other users from them, and erases replaced text
/// when the note of `oweErasure` exists. Commits are durable. Throws OpeningFailure when neither
/// XDG_DATA_HOME nor HOME is set, when the folder or the file cannot be created, opened or made
/// private, when one of them is a symbolic link, when the folder belongs to another user, and when
/// the file is damaged, is of a newer version or belongs to another program. Such a file, or the
/// target of such a link, stays unchanged. A handle is not thread-safe.
Database openDatabase(const DatabaseForm& form);

/// Upgrades the tables of `database`, which is of `form` by its marks, as `openDatabase` does.
/// Returns SQLite's result code.
int upgradeTables(sqlite3* database, const DatabaseForm& form);

/// Returns the path of the file of an open database.
std::filesystem::path fileOf(sqlite3* database);

}  // namespace kivo::linux_platform
