// Entries as CSV (RFC 4180, with lines that end in a line feed).
#pragma once

#include <string>
#include <vector>

#include "ledger/ledger_entry.h"

namespace kivo::ledger {

/// A header line, then a record for each of `entries`, in their order. Amounts are above zero; the
/// kind says in which direction the money moved. A text that a spreadsheet would run as a formula
/// has an apostrophe before it, as has one that begins with apostrophes before such a text: who
/// removes one apostrophe there has the text again.
std::string csvExport(const std::vector<LedgerEntry>& entries);

}  // namespace kivo::ledger
