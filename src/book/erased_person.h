// Removes what one person's messages left in the book of several. Commits nothing.
#pragma once

#include <cstdint>
#include <string>

namespace kivo::book {

class Database;

/// As `Book::erasePerson`, but for the bytes in the file. Call it in a step. Throws BookFailure.
std::int64_t erasePerson(Database& database, const std::string& userId);

}  // namespace kivo::book
