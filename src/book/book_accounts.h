// What the user said of accounts, as rows of their table, and the entries of accounts.
#pragma once

#include <cstdint>
#include <vector>

#include "book/account.h"

namespace kivo::book {

class Database;

/// As the functions of Book. They throw BookFailure.
std::vector<AccountEntry> accountEntries(Database& database);
std::vector<Account> keptAccounts(Database& database);
bool keepsCash(Database& database);
std::vector<std::int64_t> withdrawals(Database& database);
/// Writes the row of `account`, or removes it when it says nothing.
void writeAccount(Database& database, const Account& account);

}  // namespace kivo::book
