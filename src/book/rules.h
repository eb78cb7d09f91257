// The user's rules for payees, as rows of their table, and the entries that they change.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "book/book.h"

struct sqlite3;

namespace kivo::book {

class ChangeNotes;

/// Applies the rules for the payee of `entry`. Throws BookFailure, as the others do.
void applyRules(sqlite3* database, LedgerEntry& entry);

/// As the functions of Book with these names. `notes` gets each change.
std::vector<Rule> storedRules(sqlite3* database);
std::optional<KeptRule> keepRule(sqlite3* database, ChangeNotes& notes, const std::string& payee,
                                 RuleMembers members);
std::optional<Rule> removeRule(sqlite3* database, ChangeNotes& notes, std::int64_t number);
EarlierEntries earlierFor(sqlite3* database, const KeptRule& kept);
EarlierEntries changeEarlier(sqlite3* database, ChangeNotes& notes, const KeptRule& kept);

}  // namespace kivo::book
