// Entries as a journal of hledger.
#pragma once

#include <string>
#include <vector>

#include "book/ledger_entry.h"

namespace kivo::overview {

/// Returns `entries`, in their order, as a journal that passes `hledger check --strict`. The tag
/// "kivo-id" is the `importId`. A semicolon in a name becomes a comma and a bar a slash, since
/// hledger has no escapes for them; a comma in the tags "category" and "reference" becomes a blank.
std::string hledgerExport(const std::vector<book::LedgerEntry>& entries);

}  // namespace kivo::overview
