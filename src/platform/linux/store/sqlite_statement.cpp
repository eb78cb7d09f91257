#include "platform/linux/store/sqlite_statement.h"

#include <exception>

#include <sqlite3.h>

namespace kivo::linux_platform {
namespace {

using TextFunction = std::string (*)(std::string_view);

thread_local StatementCache* innermostCache = nullptr;

std::string_view textOf(sqlite3_value* value) {
  const void* const bytes = sqlite3_value_text(value);
  if (bytes == nullptr) return {};
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void callTextFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
  try {
    const auto function = reinterpret_cast<TextFunction>(sqlite3_user_data(context));
    const std::string text = function(textOf(arguments[0]));
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

}  // namespace

int execute(sqlite3* database, const char* sql) {
  return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

const char* errorText(int code) { return sqlite3_errstr(code); }

bool isDamage(int code) {
  const int primary = code & 0xff;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

int defineTextFunction(sqlite3* database, const char* name, TextFunction value) {
  return sqlite3_create_function_v2(database, name, 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                    reinterpret_cast<void*>(value), callTextFunction, nullptr,
                                    nullptr, nullptr);
}

StatementCache::StatementCache(sqlite3* database) : database_(database), outer_(innermostCache) {
  innermostCache = this;
}

StatementCache::~StatementCache() {
  innermostCache = outer_;
  for (const auto& [sql, statement] : statements_) sqlite3_finalize(statement);
}

sqlite3_stmt* StatementCache::taken(sqlite3* database, const char* sql) {
  if (innermostCache == nullptr || innermostCache->database_ != database) return nullptr;
  auto& statements = innermostCache->statements_;
  const auto kept = statements.find(sql);
  if (kept == statements.end()) return nullptr;
  sqlite3_stmt* const statement = kept->second;
  statements.erase(kept);
  return statement;
}

bool StatementCache::keeps(sqlite3_stmt* statement) {
  if (innermostCache == nullptr || innermostCache->database_ != sqlite3_db_handle(statement)) {
    return false;
  }
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  innermostCache->statements_.emplace(sqlite3_sql(statement), statement);
  return true;
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const {
  if (!StatementCache::keeps(statement)) sqlite3_finalize(statement);
}

Statement::Statement(sqlite3* database, const char* sql) {
  statement_.reset(StatementCache::taken(database, sql));
  if (statement_) return;
  sqlite3_stmt* compiled = nullptr;
  code_ = sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &compiled, nullptr);
  statement_.reset(compiled);
}

Statement& Statement::noteBinding(int code) {
  if (code_ == SQLITE_OK) code_ = code;
  return *this;
}

// A null pointer would bind NULL instead of an empty text.
Statement& Statement::bind(std::string_view text) {
  return noteBinding(sqlite3_bind_text64(statement_.get(), ++bound_,
                                         text.empty() ? "" : text.data(), text.size(),
                                         SQLITE_STATIC, SQLITE_UTF8));
}

Statement& Statement::bind(std::int64_t number) {
  return noteBinding(sqlite3_bind_int64(statement_.get(), ++bound_, number));
}

Statement& Statement::bind(double number) {
  return noteBinding(sqlite3_bind_double(statement_.get(), ++bound_, number));
}

Statement& Statement::bindIfPresent(std::optional<std::int64_t> number) {
  return number ? bind(*number) : noteBinding(sqlite3_bind_null(statement_.get(), ++bound_));
}

bool Statement::step() {
  if (code_ != SQLITE_OK) return false;
  const int code = sqlite3_step(statement_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) code_ = code;
  return code == SQLITE_ROW;
}

void Statement::reset() {
  if (!isCompiled()) return;
  sqlite3_reset(statement_.get());
  sqlite3_clear_bindings(statement_.get());
  code_ = SQLITE_OK;
  bound_ = 0;
}

int Statement::type(int column) const { return sqlite3_column_type(statement_.get(), column); }

bool Statement::isNull(int column) const { return type(column) == SQLITE_NULL; }

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

double Statement::real(int column) const { return sqlite3_column_double(statement_.get(), column); }

std::string Statement::text(int column) const {
  const void* const bytes = sqlite3_column_text(statement_.get(), column);
  if (bytes == nullptr) return {};
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
  return {static_cast<const char*>(bytes), size};
}

Transaction::~Transaction() {
  if (sqlite3_get_autocommit(database_) == 0) execute(database_, "ROLLBACK");
}

}  // namespace kivo::linux_platform
