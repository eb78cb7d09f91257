// The database file of the book: its tables, and its errors as exceptions.
#pragma once

#include <stdexcept>

#include "platform/linux/store/sqlite_database.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::ledger {

/// The book could not be read or written. `what` is SQLite's error text or a reason of the book's
/// own, and contains no stored data.
class BookFailure : public std::runtime_error {
 public:
  /// `code` is a result code of SQLite.
  explicit BookFailure(int code);
  /// `why` is shown to the user.
  explicit BookFailure(const char* why) : std::runtime_error(why), code_(0) {}

  /// Returns SQLite's result code; 0 for a reason of the book's own.
  [[nodiscard]] int code() const { return code_; }

 private:
  int code_;
};

/// Throws BookFailure unless SQLite's result `code` is SQLITE_OK.
void require(int code);
/// Runs a statement that returns no rows. Throws BookFailure.
void run(linux_platform::Statement& statement);
/// Goes to the next row; returns false at the end. Throws BookFailure.
bool next(linux_platform::Statement& statement);

/// Opens `app.kivo.ledger/ledger.sqlite3` in `dataHome`. Returns null, after one line on standard
/// error, when `openDatabase` fails.
linux_platform::Database openBookFile();

}  // namespace kivo::ledger
