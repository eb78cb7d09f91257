// Entries as OFX 1.02, the version that most programs read.
#pragma once

#include <string>
#include <vector>

#include "book/ledger_entry.h"

namespace kivo::overview {

/// Returns `entries`, oldest first, as a file in UTF-8 with one statement for each account and
/// currency and with an end tag for each element. FITID is the `importId`. Of a description, NAME
/// has 32 characters; MEMO has the category, after the whole description where that is longer. The
/// format demands a balance, which the book does not know: it is the sum of the statement, and is
/// left out where that does not fit 64 bits.
std::string ofxExport(const std::vector<book::LedgerEntry>& entries);

}  // namespace kivo::overview
