// What the book knows by the payee: corrections, and look-alikes.
#include <limits>

#include "ledger/book.h"
#include "ledger/book_file.h"
#include "names/name_fold.h"

namespace kivo::ledger {
namespace {

using linux_platform::Statement;

// The first of the entries that the row `this` looks like. Two searches that stop at their first
// rows, since a bank's whole life may have one payee and one sum.
constexpr const char* firstAlike = R"(
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

// Applies the user's earlier corrections for this payee.
void Book::correct(LedgerEntry& entry) const {
  const std::string folded = names::foldedName(entry.payee);
  if (folded.empty()) return;
  Statement query(database_.get(),
                  "SELECT description, category FROM corrections WHERE folded_payee = ?");
  if (!next(query.bind(folded))) return;
  if (!query.text(0).empty()) entry.description = query.text(0);
  if (!query.text(1).empty()) entry.category = query.text(1);
}

void Book::holdCorrection(const LedgerEntry& entry, const EntryChange& change) const {
  const std::string folded = names::foldedName(entry.payee);
  if (folded.empty() || !(change.description || change.category)) return;
  Statement upsert(database_.get(), R"(
    INSERT INTO corrections VALUES (?, nullif(?, ''), nullif(?, ''))
    ON CONFLICT (folded_payee) DO UPDATE SET
      description = coalesce(excluded.description, description),
      category = coalesce(excluded.category, category))");
  upsert.bind(folded);
  upsert.bind(change.description ? std::string_view(entry.description) : "");
  upsert.bind(change.category ? std::string_view(entry.category) : "");
  run(upsert);
}

void Book::markLookAlike(LedgerEntry& entry, const std::string& userId) const {
  const std::string sql = std::string(R"(
    WITH this (id, user, date, minor_units, currency, kind, folded_payee, reference) AS
      (VALUES (?, ?, ?, ?, ?, ?, ?, ?))
    SELECT )") + firstAlike +
                          " FROM this";
  const std::string folded = names::foldedName(entry.payee);
  Statement query(database_.get(), sql.c_str());
  constexpr auto behindAll = std::numeric_limits<std::int64_t>::max();
  query.bind(entry.id == 0 ? behindAll : entry.id);  // a new entry has no id yet
  query.bind(userId).bind(entry.date);
  query.bindIfPresent(entry.amount ? std::optional(entry.amount->minorUnits) : std::nullopt);
  query.bind(entry.amount ? std::string_view(entry.amount->currency) : "");
  query.bind(kindText(entry.kind)).bind(folded).bind(entry.reference);
  entry.possibleDuplicateOf.reset();
  if (next(query) && !query.isNull(0)) entry.possibleDuplicateOf = query.integer(0);
}

// After a change or the removal of the entry `id`: of itself, of those that looked like it, and of
// later ones that do now.
void Book::markLikenessAgain(std::int64_t id) const {
  const std::string sql =
      std::string("UPDATE transactions AS this SET possible_duplicate_of = ") + firstAlike + R"(
    WHERE id IN (
      SELECT id FROM transactions WHERE id = ? OR possible_duplicate_of = ?
      UNION ALL
      SELECT later.id FROM transactions AS changed JOIN transactions AS later
        ON later.date = changed.date AND later.minor_units = changed.minor_units AND
          later.folded_payee = changed.folded_payee AND later.id > changed.id
      WHERE changed.id = ?))";
  Statement update(database_.get(), sql.c_str());
  run(update.bind(id).bind(id).bind(id));
}

}  // namespace kivo::ledger
