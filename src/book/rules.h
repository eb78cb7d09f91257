// The user's rules for payees, as rows of their table.
#pragma once

#include "book/book.h"

struct sqlite3;

namespace kivo::book {

class ChangeNotes;

/// Applies the user's rules for the payee of `entry`. Throws BookFailure, as the others do.
void applyRules(sqlite3* database, LedgerEntry& entry);
/// Keeps the description and the category of `change`, as `entry` now has them, as a rule for its
/// payee. `notes` gets the change of the rule.
void keepRuleOf(sqlite3* database, ChangeNotes& notes, const LedgerEntry& entry,
                const EntryChange& change);

}  // namespace kivo::book
