#include "overview/exports/account_balances.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exported_entry.h"

namespace kivo::overview {
namespace {

using money::Day;
using money::Kind;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Such as "2026-11-21 after 3: 900".
std::string shownBalance(const AssertedBalance& one) {
  return one.date.text() + " after " + std::to_string(one.after) + ": " +
         std::to_string(one.balance.minorUnits);
}

class BalancesOfAnExport : public testing::Test {
 protected:
  // An expense of 100, after which the account has `balance`.
  LedgerEntry& spend(const Day& date, std::optional<std::int64_t> balance) {
    LedgerEntry entry = exportedEntry();
    entry.id = static_cast<std::int64_t>(entries_.size()) + 1;
    entry.date = date;
    entry.amount = Money{100, "EGP"};
    if (balance) entry.balance = Money{*balance, "EGP"};
    return entries_.emplace_back(entry);
  }
  [[nodiscard]] std::vector<AccountBalances> balances(const book::Account& account = {}) const {
    std::vector<book::AccountEntry> own;
    for (const LedgerEntry& entry : entries_) {
      const std::int64_t units = entry.amount->minorUnits;
      own.push_back({.id = entry.id,
                     .account = entry.account,
                     .date = entry.date,
                     .change = Money{entry.incoming ? units : -units, entry.amount->currency},
                     .original = entry.original,
                     .balance = entry.balance});
    }
    std::stable_sort(own.begin(), own.end(), [](const auto& one, const auto& other) {
      return one.account < other.account;
    });
    return accountBalances(entries_, accountFigures(own, {account}));
  }
  [[nodiscard]] std::vector<std::string> asserted() const {
    std::vector<std::string> found;
    for (const AccountBalances& account : balances()) {
      for (const AssertedBalance& one : account.asserted) found.push_back(shownBalance(one));
    }
    return found;
  }

  std::vector<LedgerEntry> entries_;
};

TEST_F(BalancesOfAnExport, AreAssertedAtTheEndOfEachDay) {
  spend("2026-11-01", 900);
  spend("2026-11-01", 800);
  spend("2026-11-03", std::nullopt);
  spend("2026-11-04", 600);
  EXPECT_THAT(asserted(), ElementsAre("2026-11-01 after 2: 800", "2026-11-04 after 4: 600"));
  const auto all = balances();
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_EQ(all[0].account, "4821");
  EXPECT_EQ(all[0].first, Day("2026-11-01"));
  EXPECT_EQ(all[0].opening, (Money{1000, "EGP"}));
  EXPECT_EQ(all[0].last, (Money{600, "EGP"}));
}

TEST_F(BalancesOfAnExport, CountWhatWasBookedAfterTheLastStatedOne) {
  spend("2026-11-01", 900);
  spend("2026-11-02", std::nullopt);
  EXPECT_EQ(balances().at(0).last, (Money{800, "EGP"}));
  EXPECT_EQ(balances().at(0).opening, (Money{1000, "EGP"}));
}

TEST_F(BalancesOfAnExport, AreThoseAfterTheLastGap) {
  spend("2026-11-01", 900);
  spend("2026-11-02", 500);
  spend("2026-11-03", 400);
  EXPECT_THAT(asserted(), ElementsAre("2026-11-02 after 2: 500", "2026-11-03 after 3: 400"));
  EXPECT_EQ(balances().at(0).opening, (Money{700, "EGP"}));
}

TEST_F(BalancesOfAnExport, OfMessagesOutOfOrderAreThoseOfTheEndOfTheDay) {
  spend("2026-11-01", 800);
  spend("2026-11-01", 900);
  EXPECT_THAT(asserted(), ElementsAre("2026-11-01 after 2: 800"));
}

TEST_F(BalancesOfAnExport, AreLeftOutForALimit) {
  spend("2026-11-01", 900);
  spend("2026-11-02", 800);
  EXPECT_THAT(balances({.digits = "4821", .isCredit = true}), IsEmpty());
}

TEST_F(BalancesOfAnExport, AreBelowZeroForADebt) {
  spend("2026-11-01", 1100);
  spend("2026-11-05", 1200);
  const auto all = balances({.digits = "4821", .isCredit = true});
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_EQ(all[0].opening, (Money{-1000, "EGP"}));
  EXPECT_EQ(all[0].asserted.back().balance, (Money{-1200, "EGP"}));
}

TEST_F(BalancesOfAnExport, AreLeftOutWithoutAStatedBalance) {
  spend("2026-11-01", std::nullopt);
  EXPECT_THAT(balances(), IsEmpty());
}

TEST_F(BalancesOfAnExport, AreLeftOutInACurrencyInWhichNotAllIsPosted) {
  LedgerEntry& converted = spend("2026-11-01", 900);
  converted.original = Money{-2, "USD"};
  converted.balance = Money{50, "USD"};
  LedgerEntry& posted = spend("2026-11-02", std::nullopt);
  posted.amount = Money{2, "USD"};
  posted.balance = Money{48, "USD"};
  EXPECT_THAT(balances(), IsEmpty());
}

TEST_F(BalancesOfAnExport, CountATransferOnTheDayOnWhichItLeft) {
  spend("2026-11-01", 900).counterpart = 2;
  LedgerEntry& in = spend("2026-11-02", 5100);
  setKind(in, Kind::income);
  in.account = "7314";
  in.counterpart = 1;
  EXPECT_THAT(asserted(), ElementsAre("2026-11-01 after 1: 900", "2026-11-01 after 1: 5100"));
}

}  // namespace
}  // namespace kivo::overview
