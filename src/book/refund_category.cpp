#include "book/refund_category.h"

#include "book/database.h"
#include "names/payee_key.h"

namespace kivo::book {

std::string refundCategory(Database& database, const LedgerEntry& entry) {
  const names::PayeeKey payee(entry.payee);
  Statement query(database, R"(
    SELECT category FROM transactions
    WHERE folded_payee = ? AND folded_payee <> '' AND date <= ? AND +state = 'booked' AND
      kind = 'expense' AND counterpart IS NULL AND id <> ?
    ORDER BY date DESC, id DESC LIMIT 1)");
  const std::string date = entry.date.text();
  query.bind(payee.text()).bind(date).bind(entry.id);
  return next(query) ? query.text(0) : "Refund";
}

}  // namespace kivo::book
