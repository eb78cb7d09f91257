#include "book/look_alikes.h"

#include <limits>

#include "book/database.h"
#include "names/payee_key.h"

namespace kivo::book {
namespace {

// The first of the entries that the row `this` looks like. Two searches that stop at their first
// rows, since a bank's whole life may have one payee and one sum. The halves of a transfer are not
// alike, nor are payments after which one account had two balances.
constexpr const char* firstAlikeOfThis = R"(
  (SELECT min(id) FROM (
    SELECT * FROM (
      SELECT id FROM transactions
      WHERE date = this.date AND minor_units = this.minor_units AND
        folded_payee = this.folded_payee AND currency = this.currency AND kind = this.kind AND
        user = this.user AND id < this.id AND id IS DISTINCT FROM this.counterpart AND
        coalesce(account <> this.account OR balance_currency <> this.balance_currency OR
          balance = this.balance, TRUE)
      ORDER BY id LIMIT 1) AS by_sum
    UNION ALL
    SELECT * FROM (
      SELECT id FROM transactions
      WHERE reference = this.reference AND reference <> '' AND user = this.user AND
        id < this.id AND id IS DISTINCT FROM this.counterpart AND
        coalesce(account <> this.account OR balance_currency <> this.balance_currency OR
          balance = this.balance, TRUE)
      ORDER BY id LIMIT 1) AS by_reference) AS alike))";

// `changed` is a query with the parameter `value` for the ids of transactions that were changed or
// removed.
void markAgain(Database& database, const std::string& changed, std::int64_t value) {
  const std::string sql = std::string("UPDATE transactions AS this SET possible_duplicate_of = ") +
                          firstAlikeOfThis + R"(
    WHERE id IN (
      SELECT id FROM transactions WHERE id IN )" +
                          changed + R"(
      UNION ALL
      SELECT id FROM transactions WHERE possible_duplicate_of IN )" +
                          changed + R"(
      UNION ALL
      SELECT later.id FROM transactions AS changed JOIN transactions AS later
        ON later.date = changed.date AND later.minor_units = changed.minor_units AND
          later.folded_payee = changed.folded_payee AND later.id > changed.id
      WHERE changed.id IN )" +
                          changed + R"(
      UNION ALL
      SELECT later.id FROM transactions AS changed JOIN transactions AS later
        ON later.reference = changed.reference AND later.reference <> '' AND
          later.id > changed.id
      WHERE changed.id IN )" +
                          changed + ")";
  Statement update(database, sql);
  run(update.bind(value));
}

}  // namespace

std::optional<std::int64_t> firstAlike(Database& database, const LedgerEntry& entry) {
  const std::string sql = std::string(R"(
    WITH this (id, user, date, minor_units, currency, kind, folded_payee, reference, counterpart,
        account, balance, balance_currency) AS (VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?))
    SELECT )") + firstAlikeOfThis +
                          " FROM this";
  const names::PayeeKey payee(entry.payee);
  Statement query(database, sql);
  constexpr auto behindAll = std::numeric_limits<std::int64_t>::max();
  query.bind(entry.id == 0 ? behindAll : entry.id);  // a new entry has no id yet
  const std::string date = entry.date.text();
  query.bind(entry.userId).bind(date);
  query.bindIfPresent(entry.amount ? std::optional(entry.amount->minorUnits) : std::nullopt);
  const std::string currency = entry.amount ? entry.amount->currency.text() : "";
  query.bind(currency);
  query.bind(kindText(entry.kind)).bind(payee.text()).bind(entry.reference);
  query.bindIfPresent(entry.counterpart).bind(entry.account);
  const std::string balanceCurrency = entry.balance ? entry.balance->currency.text() : "";
  query.bindIfPresent(entry.balance ? std::optional(entry.balance->minorUnits) : std::nullopt);
  query.bind(balanceCurrency);
  if (!next(query) || query.isNull(0)) return std::nullopt;
  return query.integer(0);
}

void markAlikeAgain(Database& database, std::int64_t id) {
  markAgain(database, "(VALUES (?1))", id);
}

void markAlikeAgainAfter(Database& database, std::int64_t number) {
  markAgain(database, "(SELECT id FROM past_transactions WHERE command = ?1)", number);
}

}  // namespace kivo::book
