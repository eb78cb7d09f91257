#include "book/book_accounts.h"

#include "book/book_file.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {
namespace {

using linux_platform::Statement;

// The sum in the columns `column` and the next, negative when `leaves`; absent when its values
// cannot be.
std::optional<money::Money> sumOf(const Statement& row, int column, bool leaves = false) {
  if (row.isNull(column)) return std::nullopt;
  const auto currency = money::CurrencyCode::fromText(row.text(column + 1));
  if (!currency) return std::nullopt;
  const std::int64_t units = row.integer(column);
  return money::Money{leaves ? -units : units, *currency};
}

}  // namespace

std::vector<AccountEntry> accountEntries(sqlite3* database) {
  Statement query(database, R"(
    SELECT account, date, id, state, minor_units, currency, incoming, balance, balance_currency,
      original, original_currency, possible_duplicate_of
    FROM transactions INDEXED BY transactions_by_account
    WHERE account <> '' AND state IN ('booked', 'review') ORDER BY account, date, id)");
  std::vector<AccountEntry> found;
  while (next(query)) {
    const auto date = money::Day::fromText(query.text(1));
    if (!date) continue;
    const bool leaves = query.integer(6) == 0;
    found.push_back({.id = query.integer(2),
                     .account = platform::repairedUtf8(query.text(0)),
                     .date = *date,
                     .isBooked = query.text(3) == "booked",
                     .isAlike = !query.isNull(11),
                     .change = sumOf(query, 4, leaves),
                     .original = sumOf(query, 9, leaves),
                     .balance = sumOf(query, 7)});
  }
  return found;
}

std::vector<Account> keptAccounts(sqlite3* database) {
  Statement query(database, "SELECT digits, name, credit FROM accounts ORDER BY digits");
  std::vector<Account> found;
  while (next(query)) {
    found.push_back({.digits = platform::repairedUtf8(query.text(0)),
                     .name = platform::repairedUtf8(query.text(1)),
                     .isCredit = query.integer(2) != 0});
  }
  return found;
}

void writeAccount(sqlite3* database, const Account& account) {
  if (account.name.empty() && !account.isCredit) {
    Statement removal(database, "DELETE FROM accounts WHERE digits = ?");
    return run(removal.bind(account.digits));
  }
  Statement upsert(database, "INSERT OR REPLACE INTO accounts VALUES (?, ?, ?)");
  run(upsert.bind(account.digits).bind(account.name).bind(std::int64_t{account.isCredit}));
}

}  // namespace kivo::book
