// Statements and transactions of an open SQLite database. Knows no table.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace kivo::linux_platform {

/// Runs the statements of `sql` and drops their rows; returns SQLite's code.
int execute(sqlite3* database, const char* sql);

/// SQLite's words for its result `code`.
const char* errorText(int code);

/// A compiled statement. The first failure of SQLite's, compiling included, is kept: after it,
/// calls do nothing until `reset`.
class Statement {
 public:
  Statement() = default;
  /// Compiles `sql`, for repeated use.
  Statement(sqlite3* database, const char* sql);

  /// SQLITE_OK, or SQLite's code for the first failure.
  [[nodiscard]] int code() const { return code_; }
  [[nodiscard]] bool isCompiled() const { return statement_ != nullptr; }

  /// Fills the next parameter, from the first one on. A text is not copied: it must live until the
  /// last `step`.
  Statement& bind(std::string_view text);
  Statement& bind(std::int64_t number);
  Statement& bind(double number);
  /// Fills it with NULL when `number` is absent.
  Statement& bindIfPresent(std::optional<std::int64_t> number);

  /// Goes to the next row; false at the end and after a failure.
  bool step();
  /// Runs a statement without rows; false after a failure.
  bool run() { return !step() && code_ == 0; }
  /// Frees the statement from its row, locks, bindings and failure, to be used again.
  void reset();

  /// Columns of the current row, from 0. SQLite converts other types; a NULL is 0 or empty. `type`
  /// is one of SQLite's, such as SQLITE_TEXT.
  [[nodiscard]] int type(int column) const;
  [[nodiscard]] bool isNull(int column) const;
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] double real(int column) const;
  /// Byte for byte as stored, which need not be UTF-8.
  [[nodiscard]] std::string text(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  Statement& noteBinding(int code);

  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int code_ = 0;  // SQLITE_OK
  int bound_ = 0;
};

/// Resets a statement that is used again, at the end of its scope.
class StatementUse {
 public:
  explicit StatementUse(Statement& statement) : statement_(statement) {}
  ~StatementUse() { statement_.reset(); }
  StatementUse(const StatementUse&) = delete;
  StatementUse& operator=(const StatementUse&) = delete;

 private:
  Statement& statement_;
};

/// A transaction, rolled back at the end of its scope unless it was committed.
class Transaction {
 public:
  /// Begins one that takes the write lock, after waiting for it as long as the busy timeout says,
  /// or as `begin` says.
  explicit Transaction(sqlite3* database, const char* begin = "BEGIN IMMEDIATE")
      : database_(database), code_(execute(database, begin)) {}
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Whether it began: SQLite's code.
  [[nodiscard]] int code() const { return code_; }
  /// Commits; returns SQLite's code.
  int commit() { return execute(database_, "COMMIT"); }

 private:
  sqlite3* database_;
  int code_;
};

}  // namespace kivo::linux_platform
