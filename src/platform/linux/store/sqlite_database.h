// Opens a SQLite file of this project's, creating it when there is none. Knows no table.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

struct sqlite3;

namespace kivo::linux_platform {

/// Leaves the WAL of a database in place; a long one is truncated by a checkpoint unless another
/// process is in the way.
struct CloseDatabase {
  void operator()(sqlite3* database) const;
  /// In pages, after the last commit; null for a database that was not opened.
  std::unique_ptr<int> walLength = nullptr;
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

/// How long each call on a database waits for other processes.
inline constexpr int patienceInMilliseconds = 10'000;

/// What the name of a database ends in for the note that `oweErasure` leaves beside it.
inline constexpr const char* erasureNote = "-unerased";

/// A kind of database file.
struct DatabaseForm {
  /// The folder's name in `dataHome`.
  std::string_view folder;
  const char* file;
  std::int64_t applicationId;
  /// The statements that make each version of the tables out of the one before, from version 1 on.
  /// Their number is the current version, kept as user_version.
  std::span<const char* const> versions;
};

/// Opens the file of `form`; an older version is brought to the current one.
/// Commits through it are durable. Makes folder and file when there is none; takes from others what
/// they may do with either, and makes up for an erasure that is owed. Null, with one line on
/// standard error that says why, when there is no home, when the folder or the file cannot be made
/// or made private, when one of them is a symbolic link or the folder another user's, and when the
/// file is damaged, newer than this program or somebody else's; such a file, or what a link leads
/// to, is left as it is. For one task at a time.
Database openDatabase(const DatabaseForm& form);

}  // namespace kivo::linux_platform
