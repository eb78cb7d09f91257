// Damage of the book's file: the note that a command leaves when it finds some.
#pragma once

#include <string>

struct sqlite3;

namespace kivo::ledger {

/// Prints one line on standard error: the file is damaged, and `what` is wrong and helps. Leaves
/// the line as a file (0600) beside the book, "ledger.sqlite3-damaged". While it exists,
/// `Book::isWhole` reads the whole file before it answers.
void noteDamage(sqlite3* database, const std::string& what);

}  // namespace kivo::ledger
