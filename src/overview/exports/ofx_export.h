// Entries as OFX 1.02, the version that most programs read.
#pragma once

#include <string>
#include <vector>

#include "book/ledger_entry.h"
#include "overview/exports/account_balances.h"

namespace kivo::overview {

/// Returns `entries`, oldest first, as a file in UTF-8 with one statement for each account and
/// currency and with an end tag for each element. FITID is the `importId`. Of a description, NAME
/// has 32 characters; MEMO has the category, after the whole description where that is longer. The
/// format demands a balance: that of `balances`, or else the sum of the statement, which is left
/// out where it does not fit 64 bits.
std::string ofxExport(const std::vector<book::LedgerEntry>& entries,
                      const std::vector<AccountBalances>& balances = {});

}  // namespace kivo::overview
