// The user's rules for payees, as rows of their table, and the entries that they change.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "book/book.h"

namespace kivo::book {

class Database;

class ChangeNotes;

/// Applies the rules for the payee of `entry`. Throws BookFailure, as the others do.
void applyRules(Database& database, LedgerEntry& entry);

/// As the functions of Book with these names. `notes` gets each change.
std::vector<Rule> storedRules(Database& database);
std::optional<KeptRule> keepRule(Database& database, ChangeNotes& notes, const std::string& payee,
                                 RuleMembers members);
std::optional<Rule> removeRule(Database& database, ChangeNotes& notes, std::int64_t number);
EarlierEntries earlierFor(Database& database, const KeptRule& kept);
EarlierEntries changeEarlier(Database& database, ChangeNotes& notes, const KeptRule& kept);

}  // namespace kivo::book
