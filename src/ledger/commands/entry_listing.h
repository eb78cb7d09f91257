// Formats entries as a table, as details and as JSON.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "book/ledger_entry.h"
#include "platform/foundation/json_encoder.h"

namespace kivo::ledger::EntryListing {

/// Returns a table of `entries`, one line each, with control characters escaped, and descriptions
/// shortened to fit a screen of `width` columns. On a screen without room for it, each entry has
/// two or three lines: id, day and sum, then the names, then the entry that it looks like. When
/// they are payments of several people, each says whose it is.
std::string table(const std::vector<book::LedgerEntry>& entries, std::size_t width);

/// Returns the number of `entries`, which are booked, and what was spent (less the refunds),
/// refunded, received and transferred in each currency, on a line each after an empty one; empty
/// when there are none.
std::string sums(const std::vector<book::LedgerEntry>& entries);

/// Returns all members of `entry` as lines of text, the message last, with control characters
/// escaped.
std::string details(const book::LedgerEntry& entry);

/// Returns `entry` as a JSON object of strings: "id", "key", "person", "date", "kind", "amount" (a
/// plain decimal with the currency's decimals, "" when absent), "currency", "description",
/// "category", "account", "reference", "state"; "original_amount" and "original_currency", "refund"
/// ("true"), "counterpart" and "possible_duplicate_of" (ids) are absent when the entry was not
/// converted, is no refund, has no other half, and looks like no other.
platform::JSONEncoder json(const book::LedgerEntry& entry);

}  // namespace kivo::ledger::EntryListing
