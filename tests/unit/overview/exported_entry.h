// An entry for the tests of the exports.
#pragma once

#include <string>

#include "book/ledger_entry.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Money;

/// The expense of 150.00 EGP with the id 42, for a test to change.
inline LedgerEntry exportedEntry() {
  LedgerEntry entry;
  entry.id = 42;
  entry.key = "KEY-1";
  entry.date = "2026-11-21";
  entry.amount = Money{15000, "EGP"};
  entry.description = "Carrefour City";
  entry.category = "Groceries";
  entry.account = "4821";
  entry.reference = "REF7";
  return entry;
}

/// The `importId` of it.
inline constexpr const char* exportedId = "42-46dfa818ddf64ecd";

}  // namespace kivo::overview
