// Entries as a file of Beancount.
#pragma once

#include <string>
#include <vector>

#include "ledger/ledger_entry.h"

namespace kivo::ledger {

/// A file of `entries`, oldest first, that bean-check accepts. Accounts are opened on the day of
/// their first entry. The metadata "kivo-id" is the `importId`. An account's level has only
/// letters, digits and hyphens and begins with a capital or a digit: a small letter becomes a
/// capital, "X-" goes before a letter that has none, and all else becomes hyphens. The metadata
/// "category" then has the category itself.
std::string beancountExport(const std::vector<LedgerEntry>& entries);

}  // namespace kivo::ledger
