// Backups of a book in PostgreSQL, which are those of a local book.
#pragma once

#include <filesystem>
#include <string>

#include "book/database.h"

namespace kivo::book_postgresql {

/// As `book::writeBackup`. Call it in a snapshot of `book`.
book::HeldPayments writeBackup(book::Database& book, const std::filesystem::path& path,
                               const book::BackedUpSettings& settings, const std::string& program);

/// Puts the rows of `backup` in the place of those of `book`, as `Database::withReplacement` says.
/// Call it in a transaction.
void replaceRows(book::Database& book, const book::Backup& backup);

}  // namespace kivo::book_postgresql
