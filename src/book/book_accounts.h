// What the user said of accounts, as rows of their table, and the entries of accounts.
#pragma once

#include <cstdint>
#include <vector>

#include "book/account.h"

struct sqlite3;

namespace kivo::book {

/// As the functions of Book. They throw BookFailure.
std::vector<AccountEntry> accountEntries(sqlite3* database);
std::vector<Account> keptAccounts(sqlite3* database);
bool keepsCash(sqlite3* database);
std::vector<std::int64_t> withdrawals(sqlite3* database);
/// Writes the row of `account`, or removes it when it says nothing.
void writeAccount(sqlite3* database, const Account& account);

}  // namespace kivo::book
