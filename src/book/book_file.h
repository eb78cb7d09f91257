// The database file of the book: its tables, and SQLite's errors as exceptions.
#pragma once

#include "book/book_failure.h"
#include "platform/linux/store/sqlite_database.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::book {

/// A failure that SQLite reports with a result code other than SQLITE_OK.
class DatabaseFailure : public BookFailure {
 public:
  explicit DatabaseFailure(int code);
  [[nodiscard]] int code() const { return code_; }

 private:
  int code_;
};

/// Throws DatabaseFailure unless SQLite's result `code` is SQLITE_OK.
void require(int code);
/// Runs a statement that returns no rows. Throws DatabaseFailure.
void run(linux_platform::Statement& statement);
/// Goes to the next row; returns false at the end. Throws DatabaseFailure.
bool next(linux_platform::Statement& statement);

/// A write transaction. The destructor rolls it back unless it was committed.
class WriteTransaction {
 public:
  /// Throws BookFailure when it cannot begin, such as after waiting for another writer in vain.
  explicit WriteTransaction(sqlite3* database);
  /// Throws BookFailure when nothing was committed.
  void commit() { require(transaction_.commit()); }

 private:
  linux_platform::Transaction transaction_;
};

/// Opens `app.kivo.ledger/ledger.sqlite3` in `dataHome` as `openDatabase` does. Throws BookFailure
/// when that fails.
linux_platform::Database openBookFile();

/// SQLite's application_id of a book: "KvLg" in ASCII.
inline constexpr std::int64_t bookApplicationId = 0x4B764C67;
/// Returns the version of the tables that `openBookFile` makes.
std::int64_t bookVersion();
/// Gives `database`, which holds the tables of version `version` of a book, or nothing for 0, those
/// of `bookVersion`, and the marks of a book. Throws DatabaseFailure.
void makeBookOf(sqlite3* database, std::int64_t version);

}  // namespace kivo::book
