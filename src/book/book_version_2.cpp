#include "book/book_version_2.h"

#include <string>
#include <vector>

#include "book/book_categories.h"
#include "book/book_file.h"
#include "book/history.h"
#include "book/sqlite_database.h"
#include "names/name_fold.h"

namespace kivo::book {
namespace {

// The checks do not hold for an entry that is set aside. A check that yields NULL would pass, and
// date() returns February 30 as it is unless it has to add to it.
constexpr const char* createTables = R"(
CREATE TABLE made (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  user TEXT NOT NULL, key TEXT NOT NULL, date TEXT NOT NULL, kind TEXT NOT NULL,
  minor_units INTEGER, currency TEXT NOT NULL,
  description TEXT NOT NULL, category TEXT NOT NULL, payee TEXT NOT NULL,
  folded_payee TEXT NOT NULL,
  account TEXT NOT NULL, reference TEXT NOT NULL, state TEXT NOT NULL,
  possible_duplicate_of INTEGER, text TEXT, edited INTEGER NOT NULL DEFAULT 0,
  UNIQUE (user, key),
  CHECK (state IN ('booked', 'review', 'set_aside')),
  CHECK (state = 'set_aside' OR (
    date GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]' AND date(date, '+0 days') IS date)),
  CHECK (state = 'set_aside' OR kind IN ('expense', 'income', 'transfer')),
  CHECK (CASE
    WHEN state = 'set_aside' THEN 1
    WHEN minor_units IS NULL THEN state = 'review' AND currency = ''
    ELSE minor_units BETWEEN 1 AND 9007199254740992 AND currency GLOB '[A-Z][A-Z][A-Z]' END)
) STRICT;
INSERT INTO made SELECT id, user, key, date, kind, minor_units, currency, description, category,
  payee, folded_name(payee), account, reference,
  CASE
    WHEN state NOT IN ('booked', 'review') THEN 'set_aside'
    WHEN date NOT GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]' THEN 'set_aside'
    WHEN date(date, '+0 days') IS NOT date THEN 'set_aside'
    WHEN kind NOT IN ('expense', 'income', 'transfer') THEN 'set_aside'
    WHEN minor_units IS NULL AND state = 'review' AND currency = '' THEN state
    WHEN minor_units IS NULL THEN 'set_aside'
    WHEN minor_units NOT BETWEEN 1 AND 9007199254740992 THEN 'set_aside'
    WHEN currency NOT GLOB '[A-Z][A-Z][A-Z]' THEN 'set_aside'
    ELSE state END,
  possible_duplicate_of, text, 0 FROM transactions;
DELETE FROM sqlite_sequence WHERE name = 'made';
INSERT INTO sqlite_sequence SELECT 'made', seq FROM sqlite_sequence WHERE name = 'transactions';
DROP TABLE transactions;
ALTER TABLE made RENAME TO transactions;
CREATE INDEX transactions_by_day ON transactions (state, date, id);
CREATE INDEX transactions_by_likeness ON transactions (date, minor_units, folded_payee);
CREATE INDEX transactions_by_reference ON transactions (reference) WHERE reference <> '';
CREATE INDEX transactions_by_first ON transactions (possible_duplicate_of)
  WHERE possible_duplicate_of IS NOT NULL;
CREATE INDEX transactions_by_category ON transactions (category);
CREATE TABLE made (
  folded_payee TEXT PRIMARY KEY NOT NULL, description TEXT, category TEXT
) STRICT;
INSERT INTO made SELECT folded_name(payee), description, category FROM corrections
  WHERE true ORDER BY corrections.rowid
  ON CONFLICT (folded_payee) DO UPDATE SET description = coalesce(excluded.description, description),
    category = coalesce(excluded.category, category);
DROP TABLE corrections;
ALTER TABLE made RENAME TO corrections;
CREATE TABLE categories (folded TEXT PRIMARY KEY NOT NULL, name TEXT NOT NULL) STRICT, WITHOUT ROWID;
)";

// Of equally frequent ones the one that came first.
std::vector<std::string> categoriesByUse(sqlite3* database) {
  linux_platform::Statement query(database, R"(
    SELECT category, max(uses) FROM (
      SELECT category, count(*) AS uses, min(id) AS first FROM transactions GROUP BY category
      UNION ALL
      SELECT category, 0, 1e18 FROM corrections WHERE category IS NOT NULL)
    GROUP BY category
    ORDER BY max(uses) DESC, min(first))");
  std::vector<std::string> found;
  while (next(query)) found.push_back(query.text(0));
  return found;
}

void spellCategories(sqlite3* database) {
  SqliteTables tables(database);
  ChangeNotes none(tables);
  for (const std::string& category : categoriesByUse(database)) {
    const std::string kept = keepCategory(tables, none, category);
    if (kept == category) continue;
    for (const char* const sql : {"UPDATE transactions SET category = ? WHERE category = ?",
                                  "UPDATE corrections SET category = ? WHERE category = ?"}) {
      linux_platform::Statement update(database, sql);
      run(update.bind(kept).bind(category));
    }
  }
}

}  // namespace

int makeVersion2(sqlite3* database) {
  try {
    require(linux_platform::defineTextFunction(database, "folded_name", names::foldedName));
    require(linux_platform::execute(database, createTables));
    spellCategories(database);
    return 0;
  } catch (const DatabaseFailure& failure) {
    return failure.code();
  }
}

}  // namespace kivo::book
