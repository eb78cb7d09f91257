// Writes a filter of entries as SQL.
#pragma once

#include <string>
#include <vector>

#include "book/book.h"

namespace kivo::book {

class Database;

/// A condition on rows of the table of transactions.
struct FilterSql {
  std::string condition;
  /// The values of its question marks, in order.
  std::vector<std::string> values;
};

/// Returns the condition that the rows of the entries that match `filter` meet. Throws BookFailure.
FilterSql sqlOf(Database& database, const EntryFilter& filter);

}  // namespace kivo::book
