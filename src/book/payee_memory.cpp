#include "book/payee_memory.h"

#include <limits>

#include "book/book_file.h"
#include "names/payee_key.h"

namespace kivo::book {
namespace {

using linux_platform::Statement;

// The first of the entries that the row `this` looks like. Two searches that stop at their first
// rows, since a bank's whole life may have one payee and one sum.
constexpr const char* firstAlikeOfThis = R"(
  (SELECT min(id) FROM (
    SELECT * FROM (
      SELECT id FROM transactions
      WHERE date = this.date AND minor_units = this.minor_units AND
        folded_payee = this.folded_payee AND currency = this.currency AND kind = this.kind AND
        user = this.user AND id < this.id
      ORDER BY id LIMIT 1)
    UNION ALL
    SELECT * FROM (
      SELECT id FROM transactions
      WHERE reference = this.reference AND reference <> '' AND user = this.user AND id < this.id
      ORDER BY id LIMIT 1))))";

}  // namespace

void applyCorrection(sqlite3* database, LedgerEntry& entry) {
  const names::PayeeKey payee(entry.payee);
  if (payee.text().empty()) return;
  Statement query(database, "SELECT description, category FROM corrections WHERE folded_payee = ?");
  if (!next(query.bind(payee.text()))) return;
  if (!query.text(0).empty()) entry.description = query.text(0);
  if (!query.text(1).empty()) entry.category = query.text(1);
}

void keepCorrection(sqlite3* database, const LedgerEntry& entry, const EntryChange& change) {
  const names::PayeeKey payee(entry.payee);
  if (payee.text().empty() || !(change.description || change.category)) return;
  Statement upsert(database, R"(
    INSERT INTO corrections VALUES (?, nullif(?, ''), nullif(?, ''))
    ON CONFLICT (folded_payee) DO UPDATE SET
      description = coalesce(excluded.description, description),
      category = coalesce(excluded.category, category))");
  upsert.bind(payee.text());
  upsert.bind(change.description ? std::string_view(entry.description) : "");
  upsert.bind(change.category ? std::string_view(entry.category) : "");
  run(upsert);
}

std::optional<std::int64_t> firstAlike(sqlite3* database, const LedgerEntry& entry) {
  const std::string sql = std::string(R"(
    WITH this (id, user, date, minor_units, currency, kind, folded_payee, reference) AS
      (VALUES (?, ?, ?, ?, ?, ?, ?, ?))
    SELECT )") + firstAlikeOfThis +
                          " FROM this";
  const names::PayeeKey payee(entry.payee);
  Statement query(database, sql.c_str());
  constexpr auto behindAll = std::numeric_limits<std::int64_t>::max();
  query.bind(entry.id == 0 ? behindAll : entry.id);  // a new entry has no id yet
  const std::string date = entry.date.text();
  query.bind(entry.userId).bind(date);
  query.bindIfPresent(entry.amount ? std::optional(entry.amount->minorUnits) : std::nullopt);
  const std::string currency = entry.amount ? entry.amount->currency.text() : "";
  query.bind(currency);
  query.bind(kindText(entry.kind)).bind(payee.text()).bind(entry.reference);
  if (!next(query) || query.isNull(0)) return std::nullopt;
  return query.integer(0);
}

void markAlikeAgain(sqlite3* database, std::int64_t id) {
  const std::string sql = std::string("UPDATE transactions AS this SET possible_duplicate_of = ") +
                          firstAlikeOfThis + R"(
    WHERE id IN (
      SELECT id FROM transactions WHERE id = ? OR possible_duplicate_of = ?
      UNION ALL
      SELECT later.id FROM transactions AS changed JOIN transactions AS later
        ON later.date = changed.date AND later.minor_units = changed.minor_units AND
          later.folded_payee = changed.folded_payee AND later.id > changed.id
      WHERE changed.id = ?))";
  Statement update(database, sql.c_str());
  run(update.bind(id).bind(id).bind(id));
}

}  // namespace kivo::book
