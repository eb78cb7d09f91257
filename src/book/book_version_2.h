// Upgrades the book from version 1 of its tables to version 2.
#pragma once

struct sqlite3;

namespace kivo::book {

/// Makes the tables of version 2 from those of version 1, in the transaction of the caller:
/// - Transactions have checks of their values, and the payee in the form in which payees are
///   compared. The state of those whose values break the checks becomes 'set_aside'.
/// - Corrections are kept by that form. Of several for one payee, the one that was begun last
/// counts;
///   the others fill what it does not hold.
/// - Categories that differ only in their spelling get that of the standard category, else the one
///   that the most transactions have; of equals the first.
/// Returns SQLite's result code.
int makeVersion2(sqlite3* database);

}  // namespace kivo::book
