#include "overview/exports/account_balances.h"

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "overview/exports/exported_movement.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::CurrencyCode;
using money::Money;

namespace {

using AccountKey = std::pair<std::string, CurrencyCode>;

struct Posting {
  money::Day date;
  std::int64_t movement = 0;
  std::int64_t units = 0;
  // The balance that the message states, in the same currency.
  std::optional<std::int64_t> stated = {};
};

struct Postings {
  std::map<AccountKey, std::vector<Posting>> byAccount = {};
  // Those of which a message states a balance in another currency than the posted one.
  std::set<AccountKey> unposted = {};
};

void post(Postings& postings, const LedgerEntry& half, const ExportedMovement& movement) {
  const LedgerEntry& entry = *movement.entry;
  const bool comesIn = &half == movement.into || entry.incoming;
  const Money& sum = *entry.amount;
  Posting posting{.date = entry.date,
                  .movement = entry.id,
                  .units = comesIn ? sum.minorUnits : -sum.minorUnits};
  if (half.balance && half.balance->currency == sum.currency) {
    posting.stated = half.balance->minorUnits;
  } else if (half.balance) {
    postings.unposted.insert({half.account, half.balance->currency});
  }
  postings.byAccount[{half.account, sum.currency}].push_back(posting);
}

Postings postingsOf(const std::vector<LedgerEntry>& entries) {
  Postings postings;
  for (const ExportedMovement& movement : movementsOf(entries)) {
    post(postings, *movement.entry, movement);
    if (movement.into != nullptr) post(postings, *movement.into, movement);
  }
  return postings;
}

// The balance before `postings`, after which it is `now`; absent where one exceeds 64 bits.
std::optional<std::int64_t> openingOf(const std::vector<Posting>& postings, std::int64_t now) {
  std::int64_t balance = now;
  for (auto posting = postings.rbegin(); posting != postings.rend(); ++posting) {
    if (__builtin_sub_overflow(balance, posting->units, &balance)) return std::nullopt;
  }
  return balance;
}

// The stated balances that are those at the ends of their days.
std::vector<AssertedBalance> assertedIn(const std::vector<Posting>& postings, Money balance,
                                        AccountFigures::Balance kind) {
  const std::int64_t sign = kind == AccountFigures::Balance::debt ? -1 : 1;
  std::vector<AssertedBalance> asserted;
  std::set<std::int64_t> statedToday;
  for (auto posting = postings.begin(); posting != postings.end(); ++posting) {
    balance.minorUnits += posting->units;
    if (posting->stated) statedToday.insert(sign * *posting->stated);
    const auto later = posting + 1;
    if (later != postings.end() && later->date == posting->date) continue;
    if (statedToday.contains(balance.minorUnits)) {
      asserted.push_back({posting->date, posting->movement, balance});
    }
    statedToday.clear();
  }
  return asserted;
}

}  // namespace

std::vector<AccountBalances> accountBalances(const std::vector<LedgerEntry>& entries,
                                             const std::vector<AccountFigures>& figures) {
  const Postings postings = postingsOf(entries);
  std::vector<AccountBalances> all;
  for (const AccountFigures& account : figures) {
    const AccountKey key{account.account, account.currency};
    const auto found = postings.byAccount.find(key);
    if (!account.now || account.kind == AccountFigures::Balance::limit ||
        found == postings.byAccount.end() || postings.unposted.contains(key)) {
      continue;
    }
    const auto opening = openingOf(found->second, account.now->minorUnits);
    if (!opening) continue;
    const Money before{*opening, account.currency};
    all.push_back({.account = account.account,
                   .first = found->second.front().date,
                   .opening = before,
                   .asserted = assertedIn(found->second, before, account.kind),
                   .last = *account.now});
  }
  return all;
}

}  // namespace kivo::overview
