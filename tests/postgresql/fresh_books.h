// Books in PostgreSQL in the place of files: one for each private data folder.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "book/book.h"
#include "book/database.h"
#include "book_postgresql/postgres_connection.h"
#include "postgresql/private_postgres.h"

namespace kivo::testkit {

/// While it lives, `book::Book::open` opens the book in PostgreSQL that belongs to the data folder
/// of the moment, over a connection of its own, and adds it when it is the first time. Servers have
/// a database for each data folder.
class FreshBooks {
 public:
  FreshBooks();

  /// The cluster of the running test program.
  static PrivatePostgres& cluster();

 private:
  std::shared_ptr<book_postgresql::PostgresConnection> connected();
  std::int64_t number(book_postgresql::PostgresConnection& connection);
  std::unique_ptr<book::Database> open();
  std::string runRaw(const std::string& sql);
  std::string shelfUrl();

  PrivatePostgres cluster_;
  std::map<std::string, std::int64_t> numbers_;
  // The databases of servers, by their data folders.
  std::map<std::string, std::string> shelves_;
  book::BooksFrom books_;
};

}  // namespace kivo::testkit
