#include "book/book_file.h"

#include <array>
#include <string>

#include "book/book_version_2.h"
#include "book/book_version_4.h"
#include "book/book_version_5.h"
#include "platform/linux/store/opening_failure.h"

namespace kivo::book {
namespace {

using linux_platform::DatabaseVersion;

// A released version never changes.
//
// `answers` keeps its rows when transactions are deleted: a key always gets the same answer. SQLite
// uses a partial index only for a query that contains its condition.
constexpr const char* version1 = R"(
CREATE TABLE answers (
  user TEXT NOT NULL, key TEXT NOT NULL, answer TEXT NOT NULL, PRIMARY KEY (user, key)
) STRICT, WITHOUT ROWID;
CREATE TABLE transactions (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  user TEXT NOT NULL, key TEXT NOT NULL, date TEXT NOT NULL, kind TEXT NOT NULL,
  minor_units INTEGER, currency TEXT NOT NULL,
  description TEXT NOT NULL, category TEXT NOT NULL, payee TEXT NOT NULL,
  account TEXT NOT NULL, reference TEXT NOT NULL, state TEXT NOT NULL,
  possible_duplicate_of INTEGER, text TEXT,
  UNIQUE (user, key)
) STRICT;
CREATE INDEX transactions_by_day ON transactions (state, date, id);
CREATE INDEX transactions_by_sum ON transactions (date, minor_units);
CREATE INDEX transactions_by_reference ON transactions (reference) WHERE reference <> '';
CREATE TABLE corrections (
  payee TEXT PRIMARY KEY NOT NULL COLLATE NOCASE, description TEXT, category TEXT
) STRICT;
CREATE TABLE rates (currency TEXT PRIMARY KEY NOT NULL, rate TEXT NOT NULL) STRICT)";

// No checks: a value that a damaged disk has made impossible must not stop the book.
constexpr const char* version3 = R"(
CREATE TABLE ignored (
  number INTEGER PRIMARY KEY AUTOINCREMENT,
  user TEXT NOT NULL, key TEXT NOT NULL, date TEXT NOT NULL, reason TEXT NOT NULL,
  text TEXT NOT NULL
) STRICT;
CREATE INDEX ignored_by_day ON ignored (date))";

constexpr std::array versions = {DatabaseVersion{version1}, DatabaseVersion{"", makeVersion2},
                                 DatabaseVersion{version3}, DatabaseVersion{version4},
                                 DatabaseVersion{version5}};

constexpr linux_platform::DatabaseForm form = {"app.kivo.ledger", "ledger.sqlite3",
                                               bookApplicationId, versions};

}  // namespace

DatabaseFailure::DatabaseFailure(int code)
    : BookFailure(linux_platform::errorText(code),
                  linux_platform::isDamage(code) ? Cause::damagedFile : Cause::other),
      code_(code) {}

void require(int code) {
  if (code != 0) throw DatabaseFailure(code);
}

void run(linux_platform::Statement& statement) {
  if (!statement.run()) require(statement.code());
}

bool next(linux_platform::Statement& statement) {
  if (statement.step()) return true;
  require(statement.code());
  return false;
}

WriteTransaction::WriteTransaction(sqlite3* database) : transaction_(database) {
  require(transaction_.code());
}

linux_platform::Database openBookFile() {
  try {
    return linux_platform::openDatabase(form);
  } catch (const linux_platform::OpeningFailure& failure) {
    throw BookFailure(failure.what());
  }
}

std::int64_t bookVersion() { return static_cast<std::int64_t>(versions.size()); }

void makeBookOf(sqlite3* database, std::int64_t version) {
  const std::string marks = "PRAGMA application_id = " + std::to_string(bookApplicationId) +
                            "; PRAGMA user_version = " + std::to_string(version);
  if (version > 0) require(linux_platform::execute(database, marks.c_str()));
  require(linux_platform::upgradeTables(database, form));
}

}  // namespace kivo::book
