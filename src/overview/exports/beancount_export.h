// Entries as a file of Beancount.
#pragma once

#include <string>
#include <vector>

#include "book/ledger_entry.h"
#include "overview/exports/account_balances.h"

namespace kivo::overview {

/// Returns `entries`, oldest first, as a file that bean-check accepts. Accounts are opened on the
/// day of their first entry. The metadata "kivo-id" is the `importId`. A level of an account has
/// only letters that Beancount knows, digits and hyphens: a small letter at its begin becomes a
/// capital, "X-" goes before a letter that has none, and all else becomes hyphens. The metadata
/// "category" then has the category itself. Asserts `balances`, which are those of `entries`, after
/// opening transactions.
std::string beancountExport(const std::vector<book::LedgerEntry>& entries,
                            const std::vector<AccountBalances>& balances = {});

}  // namespace kivo::overview
