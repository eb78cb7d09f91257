// What a payment that becomes a refund takes over from what was bought.
#pragma once

#include "book/book.h"
#include "book/ledger_entry.h"

namespace kivo::recording {

/// When `change` makes `entry` a refund and gives no category, gives it that of the payee's shop,
/// if it is known.
void completeRefund(book::EntryChange& change, const book::LedgerEntry& entry);

}  // namespace kivo::recording
