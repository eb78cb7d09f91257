// The file of the book: its tables, and failures of the disk below it.
#pragma once

#include <stdexcept>

#include "platform/linux/store/sqlite_database.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::ledger {

/// The book could not be read or written, and nothing was changed. Holds the reason,
/// mostly in SQLite's words, and nothing of the book.
class BookFailure : public std::runtime_error {
 public:
  /// For SQLite's result `code`.
  explicit BookFailure(int code);
  /// For a reason of our own.
  explicit BookFailure(const char* why) : std::runtime_error(why) {}
};

/// Throws BookFailure unless SQLite's result `code` is that of success.
void require(int code);
/// Runs a statement without rows. Throws BookFailure.
void run(linux_platform::Statement& statement);
/// Goes to the next row; false at the end. Throws BookFailure.
bool next(linux_platform::Statement& statement);

/// Opens `app.kivo.ledger/ledger.sqlite3` in `dataHome`, as `openDatabase` does: null, after one
/// line on standard error, when that fails.
linux_platform::Database openBookFile();

}  // namespace kivo::ledger
