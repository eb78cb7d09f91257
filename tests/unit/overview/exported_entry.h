// An entry for the tests of the exports.
#pragma once

#include <string>
#include <vector>

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

/// As `exportedEntry`, of 970.00 EGP that were converted from 20.00 USD.
inline LedgerEntry convertedEntry() {
  LedgerEntry entry = exportedEntry();
  entry.amount = Money{97000, "EGP"};
  entry.original = Money{2000, "USD"};
  return entry;
}

/// The two halves of a transfer of it, to the account 7314.
inline std::vector<LedgerEntry> exportedTransfer() {
  LedgerEntry out = exportedEntry();
  out.counterpart = 43;
  LedgerEntry in = exportedEntry();
  in.id = 43;
  in.key = "KEY-2";
  in.account = "7314";
  in.counterpart = out.id;
  setKind(in, money::Kind::income);
  return {in, out};
}

/// The `importId` of the entry.
inline constexpr const char* exportedId = "42-46dfa818ddf64ecd";

}  // namespace kivo::overview
