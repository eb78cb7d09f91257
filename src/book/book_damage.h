// Damage of the book's file: looks for it, and leaves a note beside the file.
#pragma once

#include <optional>
#include <string>

#include "book/book_failure.h"

struct sqlite3;

namespace kivo::book {

/// Prints one line on standard error: the file is damaged, and `what` is wrong and helps. Leaves
/// the line as a file (0600) beside the book, "ledger.sqlite3-damaged". While it exists,
/// `checkWhole` reads all of the file.
void noteDamage(sqlite3* database, const std::string& what);
/// Returns whether that file exists.
bool isDamageNoted(sqlite3* database);

/// Returns whether the file is whole. Sets entries aside whose values cannot be. Removes the note
/// when the file is whole; otherwise leaves it as `noteDamage` does. Throws BookFailure.
bool checkWhole(sqlite3* database);
/// Reads all of `database`, a copy of a book, and sets entries aside whose values cannot be.
/// Returns the first fault that is left, in SQLite's words; absent when it is whole. Throws
/// BookFailure.
std::optional<std::string> faultInCopy(sqlite3* database);
/// Prints one line on standard error about `failure`; for damage leaves the note, with the place.
void tellFailure(sqlite3* database, const BookFailure& failure);

}  // namespace kivo::book
