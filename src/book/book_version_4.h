// The tables of version 4: rules, the commands that can be taken back, and what entries keep
// besides.
#pragma once

namespace kivo::book {

// A table `past_...` has the rows as they were before a command changed them; of a row that the
// command added, the key alone. Each has the columns of its table, but for the texts of messages:
// an erased text stays erased. No checks: the rows were in a table that has them.
//
// `separated` has the entries of which a person said that they are no halves of one transfer, the
// lesser id first.
//
// `accounts` has what a person said of accounts. All that `accounts` lists is in the index by
// account.
//
// Of a rule, `payee` is the folded pattern, by which rules are looked up, and `written` the pattern
// as it is shown.
inline constexpr const char* version4 = R"(
ALTER TABLE transactions ADD COLUMN balance INTEGER;
ALTER TABLE transactions ADD COLUMN balance_currency TEXT NOT NULL DEFAULT '';
ALTER TABLE transactions ADD COLUMN original INTEGER;
ALTER TABLE transactions ADD COLUMN original_currency TEXT NOT NULL DEFAULT '';
ALTER TABLE ignored ADD COLUMN taken_by INTEGER;
ALTER TABLE transactions ADD COLUMN refund INTEGER NOT NULL DEFAULT 0;
ALTER TABLE transactions ADD COLUMN incoming INTEGER NOT NULL DEFAULT 0;
ALTER TABLE transactions ADD COLUMN counterpart INTEGER;
UPDATE transactions SET incoming = 1 WHERE kind = 'income';
CREATE INDEX transactions_by_counterpart ON transactions (counterpart)
  WHERE counterpart IS NOT NULL;
CREATE INDEX transactions_by_payee ON transactions (folded_payee, date) WHERE folded_payee <> '';
CREATE TABLE separated (
  number INTEGER PRIMARY KEY AUTOINCREMENT, one INTEGER NOT NULL, other INTEGER NOT NULL,
  UNIQUE (one, other)
) STRICT;
CREATE INDEX transactions_by_account ON transactions (account, date, id, state, minor_units,
  currency, incoming, balance, balance_currency, original, original_currency,
  possible_duplicate_of) WHERE account <> '';
CREATE TABLE accounts (
  digits TEXT PRIMARY KEY NOT NULL, name TEXT NOT NULL, credit INTEGER NOT NULL
) STRICT;
CREATE TABLE rules (
  number INTEGER PRIMARY KEY AUTOINCREMENT,
  payee TEXT NOT NULL UNIQUE, written TEXT NOT NULL, has_wildcard INTEGER NOT NULL,
  description TEXT, category TEXT, kind TEXT
) STRICT;
CREATE INDEX rules_with_wildcard ON rules (number) WHERE has_wildcard;
INSERT INTO rules (payee, written, has_wildcard, description, category)
  SELECT replace(replace(folded_payee, '\', '\\'), '*', '\*'),
    replace(replace(coalesce(named.payee, folded_payee), '\', '\\'), '*', '\*'),
    0, description, category
  FROM corrections LEFT JOIN (
    SELECT folded_payee, payee, max(id) FROM transactions GROUP BY folded_payee
  ) AS named USING (folded_payee) ORDER BY corrections.rowid;
DROP TABLE corrections;
CREATE TABLE commands (
  number INTEGER PRIMARY KEY AUTOINCREMENT, moment INTEGER NOT NULL, words TEXT NOT NULL,
  template TEXT NOT NULL
) STRICT;
CREATE TABLE past_transactions (
  command INTEGER NOT NULL, existed INTEGER NOT NULL,
  id INTEGER NOT NULL, user TEXT, key TEXT, date TEXT, kind TEXT, minor_units INTEGER,
  currency TEXT, description TEXT, category TEXT, payee TEXT, folded_payee TEXT, account TEXT,
  reference TEXT, state TEXT, edited INTEGER, balance INTEGER, balance_currency TEXT,
  original INTEGER, original_currency TEXT, refund INTEGER, incoming INTEGER,
  counterpart INTEGER,
  PRIMARY KEY (command, id)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_answers (
  command INTEGER NOT NULL, user TEXT NOT NULL, key TEXT NOT NULL,
  PRIMARY KEY (command, user, key)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_rules (
  command INTEGER NOT NULL, existed INTEGER NOT NULL,
  number INTEGER NOT NULL, payee TEXT, written TEXT, has_wildcard INTEGER,
  description TEXT, category TEXT, kind TEXT,
  PRIMARY KEY (command, number)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_rates (
  command INTEGER NOT NULL, existed INTEGER NOT NULL, currency TEXT NOT NULL, rate TEXT,
  PRIMARY KEY (command, currency)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_accounts (
  command INTEGER NOT NULL, existed INTEGER NOT NULL,
  digits TEXT NOT NULL, name TEXT, credit INTEGER,
  PRIMARY KEY (command, digits)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_separated (
  command INTEGER NOT NULL, existed INTEGER NOT NULL,
  number INTEGER NOT NULL, one INTEGER, other INTEGER,
  PRIMARY KEY (command, number)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_categories (
  command INTEGER NOT NULL, existed INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT,
  PRIMARY KEY (command, folded)
) STRICT, WITHOUT ROWID)";

}  // namespace kivo::book
