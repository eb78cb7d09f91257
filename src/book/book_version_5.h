// The tables of version 5: rates that hold from a day on, an index of the transfers to and from the
// account of cash, and budgets.
#pragma once

namespace kivo::book {

// A rate holds from its first day on, up to the next one; an empty day is before all others.
//
// A budget without a month holds for all months that have none of their own. `passed_budgets` has
// the share of each budget of which a person was notified.
inline constexpr const char* version5 = R"(
CREATE TABLE rates_by_day (
  currency TEXT NOT NULL, first_day TEXT NOT NULL, rate TEXT NOT NULL,
  PRIMARY KEY (currency, first_day)
) STRICT, WITHOUT ROWID;
INSERT INTO rates_by_day SELECT currency, '', rate FROM rates;
DROP TABLE rates;
ALTER TABLE rates_by_day RENAME TO rates;
CREATE TABLE past_rates_by_day (
  command INTEGER NOT NULL, existed INTEGER NOT NULL, currency TEXT NOT NULL,
  first_day TEXT NOT NULL DEFAULT '', rate TEXT,
  PRIMARY KEY (command, currency, first_day)
) STRICT, WITHOUT ROWID;
INSERT INTO past_rates_by_day SELECT command, existed, currency, '', rate FROM past_rates;
DROP TABLE past_rates;
ALTER TABLE past_rates_by_day RENAME TO past_rates;
CREATE INDEX transfers_of_cash ON transactions (date, id)
  WHERE kind = 'transfer' AND category = 'Cash';
CREATE TABLE budgets (
  folded TEXT NOT NULL, month TEXT NOT NULL, category TEXT NOT NULL,
  minor_units INTEGER NOT NULL, currency TEXT NOT NULL,
  PRIMARY KEY (folded, month)
) STRICT, WITHOUT ROWID;
CREATE TABLE past_budgets (
  command INTEGER NOT NULL, existed INTEGER NOT NULL, folded TEXT NOT NULL,
  month TEXT NOT NULL DEFAULT '', category TEXT, minor_units INTEGER, currency TEXT,
  PRIMARY KEY (command, folded, month)
) STRICT, WITHOUT ROWID;
CREATE TABLE passed_budgets (
  folded TEXT NOT NULL, month TEXT NOT NULL, percent INTEGER NOT NULL,
  PRIMARY KEY (folded, month)
) STRICT, WITHOUT ROWID)";

}  // namespace kivo::book
