// A connection to PostgreSQL, and its failures. Knows no table.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "book/book_failure.h"

struct pg_conn;
struct pg_result;

namespace kivo::book_postgresql {

struct ClearResult {
  void operator()(pg_result* result) const;
};
using Result = std::unique_ptr<pg_result, ClearResult>;

/// A value of a parameter: a text, a number, or NULL.
struct Parameter {
  std::optional<std::string> text;
  bool isNumber = false;
};

/// A connection that is made when it is first needed, and again after it was lost, but not within a
/// transaction: what follows would not be part of it. Not thread-safe.
/// Every call throws BookFailure, whose sentence holds no stored data, when the database cannot be
/// reached or refuses a statement.
class PostgresConnection {
 public:
  /// `url` is a connection URI of libpq, without a password: libpq takes that from PGPASSFILE or
  /// the service's own files.
  explicit PostgresConnection(std::string url);
  ~PostgresConnection();
  PostgresConnection(const PostgresConnection&) = delete;
  PostgresConnection& operator=(const PostgresConnection&) = delete;

  /// Runs statements without parameters.
  void run(const std::string& sql);
  /// Runs one statement, which is prepared at its first use, and returns its rows.
  Result run(const std::string& sql, const std::vector<Parameter>& parameters);

  /// Has the views of `book_postgresql::createTables` show the rows of the book `number`.
  void useBook(std::int64_t number);

 private:
  friend class PostgresTransaction;
  pg_conn* connected();
  Result checked(pg_result* result);
  void forget();

  std::string url_;
  pg_conn* connection_ = nullptr;
  std::optional<std::int64_t> book_;
  bool isInTransaction_ = false;
  // The names of the statements that were prepared.
  std::unordered_map<std::string, std::string> prepared_;
};

/// A transaction. The destructor rolls it back unless it was committed.
class PostgresTransaction {
 public:
  explicit PostgresTransaction(PostgresConnection& connection, const std::string& begin = "BEGIN");
  ~PostgresTransaction();
  PostgresTransaction(const PostgresTransaction&) = delete;
  PostgresTransaction& operator=(const PostgresTransaction&) = delete;
  void commit();

 private:
  PostgresConnection& connection_;
  bool isOpen_ = true;
};

/// The value in a row of `result`; empty for NULL.
std::string_view valueOf(const Result& result, int row, int column);

}  // namespace kivo::book_postgresql
