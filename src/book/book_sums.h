// Counts and adds booked entries. The functions throw BookFailure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"

namespace kivo::book {

class Database;

/// The amounts that a sum counts: those of `period`, from 1 to `largest`.
struct SumScope {
  money::Period period;
  std::int64_t largest;
};

/// As the functions of Book.
Counted countedIn(Database& database, const money::Period& period);
std::vector<GroupSum<money::Month>> sumsByMonth(Database& database, const SumScope& scope);
std::vector<GroupSum<money::Day>> sumsByDay(Database& database, const SumScope& scope);
std::vector<GroupSum<NameInMonth>> sumsByName(Database& database, Names names,
                                              const SumScope& scope);
std::vector<PayeeExpense> expensesByDay(Database& database, const money::Period& period);

}  // namespace kivo::book
