#include "book/book_accounts.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <tuple>

#include "book/database.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {
namespace {

// The sum in the columns `column` and the next, negative when `leaves`; absent when its values
// cannot be.
std::optional<money::Money> sumOf(const Statement& row, int column, bool leaves = false) {
  if (row.isNull(column)) return std::nullopt;
  const auto currency = money::CurrencyCode::fromText(row.text(column + 1));
  if (!currency) return std::nullopt;
  const std::int64_t units = row.integer(column);
  return money::Money{leaves ? -units : units, *currency};
}

// The rows of `query`, in their order.
std::vector<AccountEntry> read(Statement& query) {
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

}  // namespace

// A transfer to the account of cash has the other account; it is an entry of both.
std::vector<AccountEntry> accountEntries(Database& database) {
  Statement query(database, R"(
    SELECT account, date, id, state, minor_units, currency, incoming, balance, balance_currency,
      original, original_currency, possible_duplicate_of
    FROM transactions INDEXED BY transactions_by_account
    WHERE account <> '' AND state IN ('booked', 'review') ORDER BY account, date, id)");
  std::vector<AccountEntry> found = read(query);
  Statement ofCash(database, R"(
    SELECT ?, date, id, state, minor_units, currency, 1 - incoming, NULL, '', NULL, '',
      possible_duplicate_of
    FROM transactions INDEXED BY transfers_of_cash
    WHERE kind = 'transfer' AND category = 'Cash' AND counterpart IS NULL AND account <> ?1 AND
      state IN ('booked', 'review') ORDER BY date, id)");
  const std::vector<AccountEntry> transfers = read(ofCash.bind(std::string_view(cashAccount)));
  const auto middle = static_cast<std::ptrdiff_t>(found.size());
  found.insert(found.end(), transfers.begin(), transfers.end());
  std::inplace_merge(found.begin(), found.begin() + middle, found.end(),
                     [](const AccountEntry& one, const AccountEntry& other) {
                       return std::tie(one.account, one.date, one.id) <
                              std::tie(other.account, other.date, other.id);
                     });
  return found;
}

bool keepsCash(Database& database) {
  Statement query(database, "SELECT 1 FROM accounts WHERE digits = ?");
  return next(query.bind(std::string_view(cashAccount)));
}

std::vector<std::int64_t> withdrawals(Database& database) {
  Statement query(database, R"(
    SELECT id FROM transactions WHERE kind = 'expense' AND category = 'Cash' AND account <> ? AND
      key NOT LIKE 'by-hand-%' AND counterpart IS NULL AND state IN ('booked', 'review')
    ORDER BY id)");
  query.bind(std::string_view(cashAccount));
  std::vector<std::int64_t> found;
  while (next(query)) found.push_back(query.integer(0));
  return found;
}

std::vector<Account> keptAccounts(Database& database) {
  Statement query(database, "SELECT digits, name, credit FROM accounts ORDER BY digits");
  std::vector<Account> found;
  while (next(query)) {
    found.push_back({.digits = platform::repairedUtf8(query.text(0)),
                     .name = platform::repairedUtf8(query.text(1)),
                     .isCredit = query.integer(2) != 0});
  }
  return found;
}

void writeAccount(Database& database, const Account& account) {
  Statement removal(database, "DELETE FROM accounts WHERE digits = ?");
  run(removal.bind(account.digits));
  if (account.name.empty() && !account.isCredit) return;
  Statement insertion(database, "INSERT INTO accounts (digits, name, credit) VALUES (?, ?, ?)");
  run(insertion.bind(account.digits).bind(account.name).bind(std::int64_t{account.isCredit}));
}

}  // namespace kivo::book
