// Opens the database of a suite, making it when there is none. Reads and writes no value.
#pragma once

#include <memory>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace kivo::linux_platform {

/// Leaves the WAL of a suite in place; a long one is truncated by a checkpoint unless another
/// process is in the way.
struct CloseDatabase {
  void operator()(sqlite3* database) const;
  /// In pages, after the last commit; null for a database that was not opened.
  std::unique_ptr<int> walLength = nullptr;
};
struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const;
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// How long each call on a database waits for other processes.
inline constexpr int patienceInMilliseconds = 10'000;

/// What the name of a database ends in for the note that `oweErasure` leaves beside it.
inline constexpr const char* erasureNote = "-unerased";

/// The database of the suite in its folder of `dataHome`: a table `defaults` of `key` and `value`,
/// with application_id 0x4B69766F ("Kivo" in ASCII) and user_version 1.
/// Commits through it are durable. Makes folder and file when there is none; takes from others what
/// they may do with either, and makes up for an erasure that is owed. Null, with one line on
/// standard error that says why, when there is no home, when the folder or the file cannot be made
/// or made private, when one of them is a symbolic link or the folder another user's, and when the
/// file is damaged, newer than this program or somebody else's; such a file, or what a link leads
/// to, is left as it is. For one task at a time.
Database openSuiteDatabase(std::string_view suiteName);

/// Compiles `sql` for repeated use; the code is SQLite's.
int prepare(sqlite3* database, const char* sql, Statement& statement);
/// Runs the statements of `sql` and drops what they answer; the code is SQLite's.
int execute(sqlite3* database, const char* sql);

}  // namespace kivo::linux_platform
