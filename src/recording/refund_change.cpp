#include "recording/refund_change.h"

#include "recognition/merchant_categories.h"

namespace kivo::recording {

void completeRefund(book::EntryChange& change, const book::LedgerEntry& entry) {
  if (change.refund != true || entry.refund || change.category) return;
  const auto bought = recognition::merchantCategory(entry.payee);
  if (!bought.empty()) change.category = bought;
}

}  // namespace kivo::recording
