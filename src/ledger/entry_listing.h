// Entries as tables, details and JSON.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ledger/ledger_entry.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::ledger::EntryListing {

/// A table of `entries` for a screen of `width` columns, one line each, without control characters.
std::string table(const std::vector<LedgerEntry>& entries, std::size_t width);

/// All of `entry` for a person, its text last, without control characters.
std::string details(const LedgerEntry& entry);

/// `entry` as a JSON object: "id", "key", "date", "kind", "amount" (a plain decimal with the
/// currency's decimals, or "" when there is none), "currency", "description", "category",
/// "account", "reference", "state", and "possible_duplicate_of" (an id) where it looks like another
/// entry. All are texts.
platform::JSONEncoder json(const LedgerEntry& entry);

}  // namespace kivo::ledger::EntryListing
