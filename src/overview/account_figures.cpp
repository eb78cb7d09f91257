#include "overview/account_figures.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace kivo::overview {

using book::Account;
using book::AccountEntry;
using money::CurrencyCode;

namespace {

using Balance = AccountFigures::Balance;
using Entries = std::span<const AccountEntry>;

std::set<CurrencyCode> currenciesOf(Entries entries) {
  std::set<CurrencyCode> stated;
  std::set<CurrencyCode> moved;
  for (const AccountEntry& entry : entries) {
    if (entry.balance) stated.insert(entry.balance->currency);
    if (entry.change) moved.insert(entry.change->currency);
  }
  return stated.empty() ? moved : stated;
}

// What `entry` moved in `currency`; absent when it moved another currency.
std::optional<std::int64_t> movedIn(const AccountEntry& entry, const CurrencyCode& currency) {
  for (const auto& sum : {entry.change, entry.original}) {
    if (sum && sum->currency == currency) return sum->minorUnits;
  }
  return std::nullopt;
}

std::int64_t signedUnits(const money::Money& balance, Balance kind) {
  return kind == Balance::debt ? -balance.minorUnits : balance.minorUnits;
}

// The links of `entries` in `currency`. A debt is a balance below zero.
std::vector<Link> linksOf(Entries entries, const CurrencyCode& currency, Balance kind) {
  std::vector<Link> links;
  for (const AccountEntry& entry : entries) {
    const auto moved = movedIn(entry, currency);
    const bool states = entry.balance && entry.balance->currency == currency;
    // A sum of another currency changed the balance that its message states.
    if (!states && (!moved || !entry.isBooked || entry.balance)) continue;
    Link link{.date = entry.date,
              .moved = entry.isAlike ? 0 : moved.value_or(0),
              .booked = entry.isBooked ? moved.value_or(0) : 0};
    if (states) link.balance = signedUnits(*entry.balance, kind);
    if (!states) link.moved = link.booked;
    links.push_back(link);
  }
  return links;
}

// No message states what cash is left: it is what was booked.
void readCash(AccountFigures& figures, Entries entries) {
  money::Money sum{0, figures.currency};
  for (const AccountEntry& entry : entries) {
    if (!entry.isBooked || !entry.change || entry.change->currency != figures.currency) continue;
    if (__builtin_add_overflow(sum.minorUnits, entry.change->minorUnits, &sum.minorUnits)) return;
    figures.balanceDate = entry.date;
  }
  if (figures.balanceDate) figures.balance = sum;
}

AccountFigures figuresOf(Entries entries, const Account& account, const CurrencyCode& currency) {
  AccountFigures figures{.account = account.digits, .name = account.name, .currency = currency};
  std::vector<Link> links = linksOf(entries, currency, Balance::money);
  BalanceChain chain = balanceChain(links);
  if (account.isCredit) {
    figures.kind = Balance::limit;
    std::vector<Link> debts = linksOf(entries, currency, Balance::debt);
    BalanceChain ofDebts = balanceChain(debts);
    if (ofDebts.gaps.size() < chain.gaps.size()) {
      figures.kind = Balance::debt;
      links = std::move(debts);
      chain = std::move(ofDebts);
    }
  }
  if (chain.last) {
    const Link& last = links[*chain.last];
    figures.balance = money::Money{
        signedUnits({.minorUnits = *last.balance, .currency = currency}, figures.kind), currency};
    figures.balanceDate = last.date;
    figures.now = money::Money{chain.now, currency};
  }
  if (account.digits == book::cashAccount && !chain.last) readCash(figures, entries);
  figures.gaps = std::move(chain.gaps);
  return figures;
}

}  // namespace

std::vector<AccountFigures> accountFigures(const std::vector<AccountEntry>& entries,
                                           const std::vector<Account>& kept) {
  std::map<std::string, Account> known;
  for (const Account& account : kept) known.emplace(account.digits, account);
  std::vector<AccountFigures> all;
  for (auto first = entries.begin(); first != entries.end();) {
    const auto last = std::find_if(first, entries.end(), [&](const AccountEntry& entry) {
      return entry.account != first->account;
    });
    const auto found = known.find(first->account);
    const Account account =
        found == known.end() ? Account{.digits = first->account} : found->second;
    const Entries own(first, last);
    for (const CurrencyCode& currency : currenciesOf(own)) {
      all.push_back(figuresOf(own, account, currency));
    }
    first = last;
  }
  return all;
}

}  // namespace kivo::overview
