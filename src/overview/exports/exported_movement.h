// The entries of an export as movements of money: the two halves of a transfer between own accounts
// are one.
#pragma once

#include <vector>

#include "book/ledger_entry.h"

namespace kivo::overview {

struct ExportedMovement {
  /// The entry, of two halves the one that went out.
  const book::LedgerEntry* entry = nullptr;
  /// The half that came in; null for another movement, and when it is not exported.
  const book::LedgerEntry* into = nullptr;
};

/// Returns the movements of `entries`, which must outlive them, in the order of their entries.
std::vector<ExportedMovement> movementsOf(const std::vector<book::LedgerEntry>& entries);

/// Returns the kind by which `entry` counts: `transfer` for each half of a transfer.
money::Kind countedKind(const book::LedgerEntry& entry);

}  // namespace kivo::overview
