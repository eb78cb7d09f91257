// A book as the first version of kivo-ledger left it, for tests of its upgrade.
#pragma once

#include <filesystem>
#include <string>

#include "testkit/raw_store.h"

namespace kivo::testkit {

/// Creates a book (0600) of version 1 in `file` and runs `sql` in it. Its folder is created.
inline void makeFirstBook(const std::filesystem::path& file, const std::string& sql) {
  std::filesystem::create_directories(file.parent_path());
  std::filesystem::permissions(file.parent_path(), std::filesystem::perms::owner_all);
  RawStore book(file);
  std::filesystem::permissions(
      file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  book.run(R"(
PRAGMA journal_mode = WAL;
BEGIN;
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
CREATE TABLE rates (currency TEXT PRIMARY KEY NOT NULL, rate TEXT NOT NULL) STRICT;
PRAGMA application_id = 1266044007;
PRAGMA user_version = 1;
COMMIT;
)" + sql);
}

/// Returns the statement that adds a transaction to a book of version 1. `sum` is an SQL value.
inline std::string firstBookRow(const std::string& key, const std::string& sum = "15000",
                                const std::string& date = "2026-11-21",
                                const std::string& kind = "expense",
                                const std::string& currency = "EGP",
                                const std::string& state = "booked",
                                const std::string& payee = "Sunny Market",
                                const std::string& category = "Groceries") {
  const std::string fields = "'user', '" + key + "', '" + date + "', '" + kind + "', " + sum +
                             ", '" + currency + "', '" + payee + "', '" + category + "', '" +
                             payee + "', '4821', '', '" + state + "', NULL, 'text of " + key + "'";
  return "INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, "
         "category, payee, account, reference, state, possible_duplicate_of, text) VALUES (" +
         fields + "); INSERT INTO answers VALUES ('user', '" + key + "', '{\"saved\":true}');\n";
}

}  // namespace kivo::testkit
