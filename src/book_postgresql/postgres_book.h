// The book in PostgreSQL.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "book/database.h"
#include "book_postgresql/postgres_connection.h"

namespace kivo::book_postgresql {

/// Makes the tables of the book `number`, whose row in `kivo.books` the same transaction has added,
/// give numbers. Throws BookFailure.
void addBookTables(PostgresConnection& connection, std::int64_t number);

/// Returns the tables that belong to no book: `books`, `people`, `devices`, `settings`.
std::unique_ptr<book::Database> openDirectory(std::shared_ptr<PostgresConnection> connection);

/// Returns the tables of the book `number`. Books that share a connection are used by one thread.
std::unique_ptr<book::Database> openBook(std::shared_ptr<PostgresConnection> connection,
                                         std::int64_t number);

}  // namespace kivo::book_postgresql
