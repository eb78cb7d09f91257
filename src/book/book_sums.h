// Counts and adds booked entries. The functions throw BookFailure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"

struct sqlite3;

namespace kivo::book {

/// The amounts that a sum counts: those of `period`, from 1 to `largest`.
struct SumScope {
  money::Period period;
  std::int64_t largest;
};

/// As the functions of Book.
Counted countedIn(sqlite3* database, const money::Period& period);
std::vector<GroupSum<money::Month>> sumsByMonth(sqlite3* database, const SumScope& scope);
std::vector<GroupSum<money::Day>> sumsByDay(sqlite3* database, const SumScope& scope);
std::vector<GroupSum<NameInMonth>> sumsByName(sqlite3* database, Names names,
                                              const SumScope& scope);
std::vector<PayeeExpense> expensesByDay(sqlite3* database, const money::Period& period);

}  // namespace kivo::book
