// Entries as a journal of hledger.
#pragma once

#include <string>
#include <vector>

#include "book/ledger_entry.h"
#include "overview/exports/account_balances.h"

namespace kivo::overview {

/// Returns `entries`, in their order, as a journal that passes `hledger check --strict`. The tag
/// "kivo-id" is the `importId`. A semicolon in a name becomes a comma and a bar a slash, since
/// hledger has no escapes for them; a comma in the tags "category" and "reference" becomes a blank.
/// Asserts `balances`, which are those of `entries`, after opening transactions.
std::string hledgerExport(const std::vector<book::LedgerEntry>& entries,
                          const std::vector<AccountBalances>& balances = {});

}  // namespace kivo::overview
