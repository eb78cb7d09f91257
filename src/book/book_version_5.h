// The tables of version 5: rates that hold from a day on, and an index of the transfers to and from
// the account of cash.
#pragma once

namespace kivo::book {

// A rate holds from its first day on, up to the next one; an empty day is before all others.
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
  WHERE kind = 'transfer' AND category = 'Cash')";

}  // namespace kivo::book
