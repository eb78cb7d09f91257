// The figures of the user's accounts: last balances and gaps between stated balances.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "book/account.h"
#include "overview/balance_chain.h"

namespace kivo::overview {

struct AccountFigures {
  /// Balances of a credit card: what may still be spent, or what is owed.
  enum class Balance { money, limit, debt };

  /// Its digits, and the name that the user gave; empty for none.
  std::string account;
  std::string name;
  money::CurrencyCode currency;
  Balance kind = Balance::money;
  /// The last that a message states, as it states it, and its day; both absent when none does. Of
  /// cash, the sum of what is booked, and the last day.
  std::optional<money::Money> balance = {};
  std::optional<money::Day> balanceDate = {};
  /// The stated balance, and what was booked after it; below zero for a debt.
  std::optional<money::Money> now = {};
  /// In minor units of `currency`, the oldest first.
  std::vector<Gap> gaps = {};
};

/// Returns the figures of the accounts of `entries`, which are in the order of accounts, days and
/// ids, one for each currency of an account in which messages state balances, or in which sums
/// moved if they state none. An entry in review counts by its balance, but its sum is not booked.
/// Of a credit card, the balances are a limit or a debt, whichever leaves fewer gaps.
std::vector<AccountFigures> accountFigures(const std::vector<book::AccountEntry>& entries,
                                           const std::vector<book::Account>& kept);

}  // namespace kivo::overview
