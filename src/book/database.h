// What the book needs of a database, whichever it is: statements, steps, and the erasure of texts.
// Knows no table.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "book/book_backup.h"
#include "book/book_failure.h"

namespace kivo::book {

/// A statement that a database has prepared. As `Statement`, which calls it.
class PreparedStatement {
 public:
  PreparedStatement() = default;
  virtual ~PreparedStatement() = default;
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;

  virtual void bind(std::string_view text) = 0;
  virtual void bind(std::optional<std::int64_t> number) = 0;
  virtual bool next() = 0;
  virtual void reset() = 0;
  [[nodiscard]] virtual bool isNull(int column) const = 0;
  [[nodiscard]] virtual std::int64_t integer(int column) const = 0;
  [[nodiscard]] virtual std::string text(int column) const = 0;
};

/// An open database with the tables of one book. Not thread-safe. Every call throws BookFailure
/// when the database cannot be read or written.
class Database {
 public:
  Database() = default;
  virtual ~Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  virtual std::unique_ptr<PreparedStatement> prepare(const std::string& sql) = 0;
  /// Returns SQL for the day that is `days` after the one in `column`.
  [[nodiscard]] virtual std::string dayBeside(const std::string& column, int days) const = 0;

  /// Calls `steps` in a transaction that no other writer of the book joins, and commits it; rolls
  /// it back when they throw.
  virtual void inTransaction(const std::function<void()>& steps) = 0;
  /// Calls `reads`, which see the book at one moment.
  virtual void inSnapshot(const std::function<void()>& reads) = 0;

  /// Says that the transaction deletes texts, whose bytes may not remain. Call it before its
  /// commit.
  virtual void oweErasure() = 0;
  /// Erases the bytes of texts that were deleted.
  virtual void eraseDeletedTexts() = 0;

  /// Tells the user that the database is damaged, and what is wrong and helps.
  virtual void noteDamage(const std::string& what) = 0;

  /// As the calls of Book with these names.
  virtual bool isWhole() = 0;
  virtual void tell(const BookFailure& failure) = 0;
  [[nodiscard]] virtual std::filesystem::path path() const = 0;
  virtual std::int64_t changesByOthers() = 0;
  virtual HeldPayments backUp(const std::filesystem::path& path, const BackedUpSettings& settings,
                              const std::string& program) = 0;
  /// Calls `use` with a function that puts the rows of `backup` in the place of those of the book,
  /// to be called in a transaction. Numbers that either has given are not given again. The history
  /// of commands is empty then, and the ignored messages that a command had taken are gone.
  virtual void withReplacement(
      const Backup& backup,
      const std::function<void(const std::function<void()>& replace)>& use) = 0;
};

/// A statement of the SQL that all databases of the book speak: its parameters are `?`, or `?1` and
/// the like, `user` is a column's name, and `INDEXED BY` and a `+` before a column are hints for
/// SQLite alone. Not thread-safe; must not outlive its database. All throw
/// BookFailure.
class Statement {
 public:
  Statement(Database& database, const std::string& sql) : prepared_(database.prepare(sql)) {}

  /// Binds the next parameter, beginning with the first. A text must outlive the last `next`.
  Statement& bind(std::string_view text) {
    prepared_->bind(text);
    return *this;
  }
  Statement& bind(std::int64_t number) {
    prepared_->bind(std::optional(number));
    return *this;
  }
  /// Binds NULL when `number` is absent.
  Statement& bindIfPresent(std::optional<std::int64_t> number) {
    prepared_->bind(number);
    return *this;
  }

  /// Releases what the statement holds and clears its bindings, so that it can be used again.
  void reset() { prepared_->reset(); }

  /// Columns of the current row, from 0. A NULL is 0 or empty, true is 1. A text need not be valid
  /// UTF-8.
  [[nodiscard]] bool isNull(int column) const { return prepared_->isNull(column); }
  [[nodiscard]] std::int64_t integer(int column) const { return prepared_->integer(column); }
  [[nodiscard]] std::string text(int column) const { return prepared_->text(column); }

 private:
  friend bool next(Statement& statement);
  std::unique_ptr<PreparedStatement> prepared_;
};

/// Goes to the next row; returns false at the end.
inline bool next(Statement& statement) { return statement.prepared_->next(); }
/// Runs a statement that returns no rows.
inline void run(Statement& statement) { (void)next(statement); }

}  // namespace kivo::book
