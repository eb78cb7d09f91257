// Finds the category of a refund, which lessens what was spent on it.
#pragma once

#include <string>

#include "book/ledger_entry.h"

namespace kivo::book {

class Database;

/// Returns the category of the last booked payment to the payee of `entry` up to its day; "Refund"
/// when there is none. Throws BookFailure.
std::string refundCategory(Database& database, const LedgerEntry& entry);

}  // namespace kivo::book
