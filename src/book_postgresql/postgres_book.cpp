#include "book_postgresql/postgres_book.h"

#include <cstdlib>
#include <utility>
#include <vector>

#include <libpq-fe.h>

#include "book_postgresql/postgres_backup.h"
#include "book_postgresql/postgres_sql.h"
#include "book_postgresql/postgres_tables.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/complaint.h"

namespace kivo::book_postgresql {

using book::BackedUpSettings;
using book::Backup;
using book::BookFailure;

namespace {

// The number of the tables that belong to no book.
constexpr std::int64_t noBook = 0;

// PostgreSQL stores no NUL and no text that is not valid UTF-8.
std::string storable(std::string_view text) {
  std::string stored = platform::repairedUtf8(text);
  for (std::size_t at = 0; (at = stored.find('\0', at)) != std::string::npos;) {
    stored.replace(at, 1, "\uFFFD");
  }
  return stored;
}

class PostgresStatement : public book::PreparedStatement {
 public:
  PostgresStatement(PostgresConnection& connection, std::int64_t book, const std::string& sql)
      : connection_(connection), book_(book), sql_(postgresSql(sql)) {}

  void bind(std::string_view text) override { parameters_.push_back({storable(text), false}); }
  void bind(std::optional<std::int64_t> number) override {
    parameters_.push_back({number ? std::optional(std::to_string(*number)) : std::nullopt, true});
  }

  bool next() override {
    if (result_ == nullptr) {
      if (book_ != noBook) connection_.useBook(book_);
      result_ = connection_.run(sql_, parameters_);
    }
    return ++row_ < PQntuples(result_.get());
  }

  void reset() override {
    parameters_.clear();
    result_.reset();
    row_ = -1;
  }

  [[nodiscard]] bool isNull(int column) const override {
    return PQgetisnull(result_.get(), row_, column) != 0;
  }
  [[nodiscard]] std::int64_t integer(int column) const override {
    const std::string value = text(column);
    return value == "t" ? 1 : std::atoll(value.c_str());
  }
  [[nodiscard]] std::string text(int column) const override {
    return std::string(valueOf(result_, row_, column));
  }

 private:
  PostgresConnection& connection_;
  std::int64_t book_;
  std::string sql_;
  std::vector<Parameter> parameters_;
  Result result_;
  int row_ = -1;
};

class PostgresBook : public book::Database {
 public:
  PostgresBook(std::shared_ptr<PostgresConnection> connection, std::int64_t number)
      : connection_(std::move(connection)), number_(number) {}

  std::unique_ptr<book::PreparedStatement> prepare(const std::string& sql) override {
    return std::make_unique<PostgresStatement>(*connection_, number_, sql);
  }

  [[nodiscard]] std::string dayBeside(const std::string& column, int days) const override {
    return "to_char(CAST(" + column + " AS DATE) + (" + std::to_string(days) + "), 'YYYY-MM-DD')";
  }

  // The row of the book is the lock that its writers wait for, as those of a SQLite file do. With
  // it each statement sees what the last writer committed. Where transactions are stricter by
  // default, waiting for another one ends the transaction before a step was taken: it begins again.
  void inTransaction(const std::function<void()>& steps) override {
    if (number_ == noBook) {
      PostgresTransaction transaction(*connection_);
      steps();
      return transaction.commit();
    }
    constexpr int mostAttempts = 100;
    for (int left = mostAttempts;; --left) {
      connection_->useBook(number_);
      PostgresTransaction transaction(*connection_);
      try {
        lock();
      } catch (const BookFailure& failure) {
        if (failure.cause() != BookFailure::Cause::crossed || left == 1) throw;
        continue;
      }
      steps();
      transaction.commit();
      ++ownChanges_;
      return;
    }
  }

  void inSnapshot(const std::function<void()>& reads) override {
    connection_->useBook(number_);
    PostgresTransaction transaction(*connection_,
                                    "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
    reads();
    transaction.commit();
  }

  // The database overwrites deleted rows by itself, and its log in the course of time.
  void oweErasure() override {}
  void eraseDeletedTexts() override {}

  void noteDamage(const std::string& what) override {
    linux_platform::complain("kivo-server", "the book is damaged: " + what);
  }
  bool isWhole() override { return true; }
  void tell(const BookFailure& failure) override {
    linux_platform::complain("kivo-server",
                             std::string("the book cannot be read or written: ") + failure.what());
  }
  [[nodiscard]] std::filesystem::path path() const override { return {}; }

  std::int64_t changesByOthers() override {
    const Result changes = connection_->run("SELECT changes FROM kivo.books WHERE number = $1",
                                            {{std::to_string(number_), true}});
    if (PQntuples(changes.get()) == 0) throw BookFailure("it does not exist");
    return std::atoll(std::string(valueOf(changes, 0, 0)).c_str()) - ownChanges_;
  }

  book::HeldPayments backUp(const std::filesystem::path& path, const BackedUpSettings& settings,
                            const std::string& program) override {
    book::HeldPayments held;
    inSnapshot([&] { held = writeBackup(*this, path, settings, program); });
    return held;
  }

  void withReplacement(
      const Backup& backup,
      const std::function<void(const std::function<void()>& replace)>& use) override {
    use([&] { replaceRows(*this, backup); });
  }

 private:
  void lock() {
    const Result locked =
        connection_->run("UPDATE kivo.books SET changes = changes + 1 WHERE number = $1",
                         {{std::to_string(number_), true}});
    if (std::string_view(PQcmdTuples(locked.get())) != "1") throw BookFailure("it does not exist");
  }

  std::shared_ptr<PostgresConnection> connection_;
  std::int64_t number_;
  std::int64_t ownChanges_ = 0;
};

}  // namespace

void addBookTables(PostgresConnection& connection, std::int64_t number) {
  for (const TableForm& table : tableForms()) {
    if (std::string_view(table.numbered).empty()) continue;
    connection.run("INSERT INTO kivo.numbers VALUES ($1, $2, 0)",
                   {{std::to_string(number), true}, {table.name, false}});
  }
}

std::unique_ptr<book::Database> openDirectory(std::shared_ptr<PostgresConnection> connection) {
  return openBook(std::move(connection), noBook);
}

std::unique_ptr<book::Database> openBook(std::shared_ptr<PostgresConnection> connection,
                                         std::int64_t number) {
  return std::make_unique<PostgresBook>(std::move(connection), number);
}

}  // namespace kivo::book_postgresql
