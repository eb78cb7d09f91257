// The tables of all books in PostgreSQL, by numbered migrations.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "book_postgresql/postgres_connection.h"

namespace kivo::book_postgresql {

/// A table of the book, as all databases have it.
struct TableForm {
  /// Its name.
  const char* name;
  /// Its columns with their types and conditions, without the book's number.
  const char* columns;
  /// The columns of its primary key, behind the book's number.
  const char* key;
  /// The column that gets the next number of the book's own when none is given; empty for none.
  const char* numbered;
};

/// Returns the tables in the order in which they are filled.
std::span<const TableForm> tableForms();
/// Returns the names of the columns of `table`, with commas between.
std::string columnNames(const TableForm& table);

/// Returns for each of these columns whether it holds numbers, not texts.
std::vector<bool> numberColumns(const TableForm& table);

/// Creates the tables and views, or brings those of an older version up to date. The tables are in
/// the schema `kivo`, partitioned by book. The views in the schema `kivo_book` have their names and
/// show the rows of the book that the connection uses, and no others. Throws BookFailure, also when
/// the tables are of a newer version.
void createTables(PostgresConnection& connection);

}  // namespace kivo::book_postgresql
