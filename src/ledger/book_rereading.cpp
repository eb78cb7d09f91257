// Book::reread and Book::acceptAs: entries whose wording was taught.
#include "ledger/book.h"
#include "ledger/book_categories.h"
#include "ledger/book_file.h"
#include "names/name_fold.h"

namespace kivo::ledger {

using linux_platform::Statement;
using linux_platform::Transaction;

std::optional<LedgerEntry> Book::reread(std::int64_t id, const std::string& currency) const {
  auto found = entry(id);
  if (!found || !found->text) return std::nullopt;
  const Reading reading = readingOf(*found->text, currency);
  if (reading.outcome != Outcome::transaction && reading.outcome != Outcome::needsReview) {
    return std::nullopt;
  }
  apply(reading, *found);
  correct(*found);
  found->category = spelledCategory(database_.get(), found->category, id);
  Statement query(database_.get(), "SELECT user FROM transactions WHERE id = ?");
  if (!next(query.bind(id))) return std::nullopt;
  markLookAlike(*found, query.text(0));
  return found;
}

bool Book::acceptAs(const LedgerEntry& entry) {
  if (!entry.amount) return false;
  const std::string folded = names::foldedName(entry.payee);
  Transaction transaction(database_.get());
  require(transaction.code());
  const std::string category = keepCategory(database_.get(), entry.category, entry.id);
  Statement update(database_.get(), R"(
    UPDATE transactions SET kind = ?, minor_units = ?, currency = ?, description = ?, category = ?,
      payee = ?, folded_payee = ?, account = ?, reference = ?, state = 'booked'
    WHERE id = ? AND state IN ('booked', 'review') AND edited = 0 RETURNING id)");
  update.bind(kindText(entry.kind)).bind(entry.amount->minorUnits).bind(entry.amount->currency);
  update.bind(entry.description).bind(category).bind(entry.payee).bind(folded);
  update.bind(entry.account).bind(entry.reference).bind(entry.id);
  if (!next(update)) return false;
  run(update);
  markLikenessAgain(entry.id);
  require(transaction.commit());
  return true;
}

}  // namespace kivo::ledger
