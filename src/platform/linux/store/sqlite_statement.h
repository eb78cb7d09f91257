// Statements and transactions of an open SQLite database. Knows no table.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace kivo::linux_platform {

/// Runs the statements of `sql` and ignores their rows. Returns SQLite's result code.
int execute(sqlite3* database, const char* sql);

/// Returns SQLite's English text for its result `code`.
const char* errorText(int code);
/// Returns whether SQLite's result `code` says that the file is damaged or no database.
bool isDamage(int code);

/// Defines the SQL function `name` of one text for `database`: `value`, which gives the same result
/// for the same text. What `value` throws becomes an error of the statement. Returns SQLite's
/// result code.
int defineTextFunction(sqlite3* database, const char* name, std::string (*value)(std::string_view));

/// A prepared statement. Keeps the code of its first failure: after that, `step` and `run` return
/// false until `reset`, and for good when `sql` could not be compiled. Not thread-safe.
class Statement {
 public:
  Statement() = default;
  /// Compiles `sql`, for repeated use.
  Statement(sqlite3* database, const char* sql);

  /// Returns SQLITE_OK, or SQLite's result code for the first failure.
  [[nodiscard]] int code() const { return code_; }
  [[nodiscard]] bool isCompiled() const { return statement_ != nullptr; }

  /// Binds the next parameter, beginning with the first. A text is not copied: it must outlive the
  /// last `step`.
  Statement& bind(std::string_view text);
  Statement& bind(std::int64_t number);
  Statement& bind(double number);
  /// Binds NULL when `number` is absent.
  Statement& bindIfPresent(std::optional<std::int64_t> number);

  /// Goes to the next row; false at the end and after a failure.
  bool step();
  /// Runs a statement that returns no rows; false after a failure.
  bool run() { return !step() && code_ == 0; }
  /// Releases the statement's locks and clears its bindings and its failure, so that it can be used
  /// again. Has no effect when it could not be compiled.
  void reset();

  /// Columns of the current row, from 0. SQLite converts other types; a NULL is 0 or empty. `type`
  /// is one of SQLite's, such as SQLITE_TEXT.
  [[nodiscard]] int type(int column) const;
  [[nodiscard]] bool isNull(int column) const;
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] double real(int column) const;
  /// Returns the stored bytes, which need not be valid UTF-8.
  [[nodiscard]] std::string text(int column) const;

 private:
  // Finalizes a statement, or has it kept.
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  Statement& noteBinding(int code);

  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int code_ = 0;  // SQLITE_OK
  int bound_ = 0;
};

/// While it lives, this thread keeps the compiled statements of one database and uses them for
/// later statements of the same text: compiling takes longer than most of them run. At most one per
/// thread counts, the innermost. It must not outlive the database.
class StatementCache {
 public:
  explicit StatementCache(sqlite3* database);
  ~StatementCache();
  StatementCache(const StatementCache&) = delete;
  StatementCache& operator=(const StatementCache&) = delete;

 private:
  friend class Statement;
  // Returns a kept statement, which is then in use; null when none is kept.
  static sqlite3_stmt* taken(sqlite3* database, const char* sql);
  // Keeps a statement that is no longer in use; returns false when its database has no cache.
  static bool keeps(sqlite3_stmt* statement);

  sqlite3* database_;
  StatementCache* outer_;
  std::unordered_multimap<std::string, sqlite3_stmt*> statements_;
};

/// Resets a statement at the end of a scope.
class StatementUse {
 public:
  explicit StatementUse(Statement& statement) : statement_(statement) {}
  ~StatementUse() { statement_.reset(); }
  StatementUse(const StatementUse&) = delete;
  StatementUse& operator=(const StatementUse&) = delete;

 private:
  Statement& statement_;
};

/// A transaction. The destructor rolls it back unless it was committed.
class Transaction {
 public:
  /// Begins it with the statement `begin`. The default takes the write lock, and waits for it up to
  /// the busy timeout.
  explicit Transaction(sqlite3* database, const char* begin = "BEGIN IMMEDIATE")
      : database_(database), code_(execute(database, begin)) {}
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Returns SQLite's result code of the beginning: SQLITE_OK when the transaction began.
  [[nodiscard]] int code() const { return code_; }
  /// Commits. Returns SQLite's result code.
  int commit() { return execute(database_, "COMMIT"); }

 private:
  sqlite3* database_;
  int code_;
};

}  // namespace kivo::linux_platform
