// Entries as CSV (RFC 4180, with lines that end in a line feed).
#pragma once

#include <string>
#include <vector>

#include "book/ledger_entry.h"

namespace kivo::overview {

/// Returns a header line and a record for each of `entries`, in their order. Amounts are above
/// zero; the kind says in which direction the money moved. A text that a spreadsheet would run as a
/// formula gets an apostrophe in front, also when blanks, control or format characters come before
/// the formula, and so does one that begins with apostrophes before such a text, so that removing
/// one apostrophe restores the text.
std::string csvExport(const std::vector<book::LedgerEntry>& entries);

}  // namespace kivo::overview
