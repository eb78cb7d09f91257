// The balances that exports assert: those that messages state and the exported postings explain.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/ledger_entry.h"
#include "overview/account_figures.h"

namespace kivo::overview {

/// The balance of an account at the end of a day, as a message states it.
struct AssertedBalance {
  money::Day date;
  /// The id of the entry of the last movement of that day that is posted to the account.
  std::int64_t after = 0;
  money::Money balance;
};

struct AccountBalances {
  std::string account;
  /// The day of the first posting, and the balance before it.
  money::Day first;
  money::Money opening;
  /// In the order of their days. After the last gap, and before it where gaps cancel out.
  std::vector<AssertedBalance> asserted = {};
  /// The balance after all postings.
  money::Money last;
};

/// Returns the balances of the accounts of `entries`, which are in the order of their days and are
/// all that is booked of these accounts in a period of which `figures` are. Leaves out an account
/// without a stated balance, one whose balance is a limit, and one whose entries are posted in
/// another currency than their balances.
std::vector<AccountBalances> accountBalances(const std::vector<book::LedgerEntry>& entries,
                                             const std::vector<AccountFigures>& figures);

}  // namespace kivo::overview
