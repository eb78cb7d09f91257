#include "book_postgresql/postgres_connection.h"

#include <array>
#include <utility>

#include <libpq-fe.h>

namespace kivo::book_postgresql {

using book::BookFailure;

namespace {

// The numbers by which PostgreSQL knows its types.
constexpr Oid numberType = 20;  // bigint
constexpr Oid textType = 25;

void silence(void*, const char*) {}

}  // namespace

void ClearResult::operator()(pg_result* result) const { PQclear(result); }

PostgresConnection::PostgresConnection(std::string url) : url_(std::move(url)) {}

PostgresConnection::~PostgresConnection() { forget(); }

void PostgresConnection::forget() {
  PQfinish(connection_);
  connection_ = nullptr;
  book_.reset();
  prepared_.clear();
}

pg_conn* PostgresConnection::connected() {
  if (connection_ != nullptr && PQstatus(connection_) == CONNECTION_OK) return connection_;
  forget();
  if (isInTransaction_) throw BookFailure("the database went away");
  // A phone waits for 15 s: a server that is gone must not take longer to be noticed. What the URL
  // says comes last and counts.
  const std::array names = {"connect_timeout", "tcp_user_timeout", "dbname",
                            static_cast<const char*>(nullptr)};
  const std::array values = {"4", "8000", url_.c_str(), static_cast<const char*>(nullptr)};
  constexpr int expandsUrl = 1;
  connection_ = PQconnectdbParams(names.data(), values.data(), expandsUrl);
  if (PQstatus(connection_) != CONNECTION_OK) {
    forget();
    throw BookFailure("the database cannot be reached");
  }
  PQsetNoticeProcessor(connection_, silence, nullptr);
  // A commit counts when the standbys that the database waits for have it. Plans are made once for
  // a connection: those of statements over all partitions take longer to make than to run.
  for (const char* const setting :
       {"SET client_encoding = 'UTF8'", "SET standard_conforming_strings = on",
        "SET synchronous_commit = on", "SET plan_cache_mode = force_generic_plan",
        "SET search_path = kivo_book, kivo"}) {
    PQclear(PQexec(connection_, setting));
  }
  return connection_;
}

// The words of a failure may hold stored data, its SQLSTATE does not.
Result PostgresConnection::checked(pg_result* result) {
  Result owned(result);
  const ExecStatusType status = PQresultStatus(result);
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return owned;
  const char* const found = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  const std::string state = found == nullptr ? "" : found;
  if (state.starts_with("40")) {
    throw BookFailure("another change came at the same time", BookFailure::Cause::crossed);
  }
  // libpq's own failures have no SQLSTATE; with 57P the database ends or begins.
  const bool isLost = PQstatus(connection_) != CONNECTION_OK || state.empty();
  if (isLost || state.starts_with("57P")) {
    forget();
    throw BookFailure("the database went away");
  }
  throw BookFailure("the database refuses a statement (" + state + ")");
}

void PostgresConnection::run(const std::string& sql) {
  pg_conn* const connection = connected();
  checked(PQexec(connection, sql.c_str()));
}

Result PostgresConnection::run(const std::string& sql, const std::vector<Parameter>& parameters) {
  pg_conn* const connection = connected();
  std::vector<Oid> types;
  std::vector<const char*> values;
  std::string key = sql;
  for (const Parameter& parameter : parameters) {
    types.push_back(parameter.isNumber ? numberType : textType);
    values.push_back(parameter.text ? parameter.text->c_str() : nullptr);
    key += parameter.isNumber ? '\1' : '\2';
  }
  const int count = static_cast<int>(parameters.size());
  auto known = prepared_.find(key);
  if (known == prepared_.end()) {
    const std::string name = "s" + std::to_string(prepared_.size());
    checked(PQprepare(connection, name.c_str(), sql.c_str(), count, types.data()));
    known = prepared_.emplace(std::move(key), name).first;
  }
  return checked(
      PQexecPrepared(connection, known->second.c_str(), count, values.data(), nullptr, nullptr, 0));
}

void PostgresConnection::useBook(std::int64_t number) {
  connected();
  if (book_ == number) return;
  run("SELECT set_config('kivo.book', $1, false)", {{std::to_string(number)}});
  book_ = number;
}

PostgresTransaction::PostgresTransaction(PostgresConnection& connection, const std::string& begin)
    : connection_(connection) {
  connection_.run(begin);
  connection_.isInTransaction_ = true;
}

PostgresTransaction::~PostgresTransaction() {
  if (!isOpen_) return;
  try {
    connection_.run("ROLLBACK");
  } catch (const BookFailure&) {  // the connection is gone, and the transaction with it
  }
  connection_.isInTransaction_ = false;
}

void PostgresTransaction::commit() {
  connection_.run("COMMIT");
  isOpen_ = false;
  connection_.isInTransaction_ = false;
}

std::string_view valueOf(const Result& result, int row, int column) {
  return {PQgetvalue(result.get(), row, column),
          static_cast<std::size_t>(PQgetlength(result.get(), row, column))};
}

}  // namespace kivo::book_postgresql
