// The book in PostgreSQL.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "book/database.h"
#include "book_postgresql/postgres_connection.h"

namespace kivo::book_postgresql {

/// Adds a book of the name `name` and returns its number. Throws BookFailure, also when there is
/// one.
std::int64_t addBook(PostgresConnection& connection, const std::string& name);

/// Returns the tables of the book `number`. Books that share a connection are used by one thread.
std::unique_ptr<book::Database> openBook(std::shared_ptr<PostgresConnection> connection,
                                         std::int64_t number);

}  // namespace kivo::book_postgresql
