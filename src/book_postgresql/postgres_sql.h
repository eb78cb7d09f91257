// The statements of the book in PostgreSQL's words. Runs none.
#pragma once

#include <string>
#include <string_view>

namespace kivo::book_postgresql {

/// Returns `sql`, a statement as `book::Statement` takes it, for PostgreSQL: parameters are $1 and
/// so on, numbered as SQLite does; the column `user` is in quotes, since the bare word is the
/// database's user; hints for SQLite are left out. Texts in quotes stay as they are.
std::string postgresSql(std::string_view sql);

}  // namespace kivo::book_postgresql
