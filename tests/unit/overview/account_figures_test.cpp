#include "overview/account_figures.h"

#include <gmock/gmock.h>

namespace kivo::overview {
namespace {

using book::AccountEntry;
using money::Day;
using money::Money;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

AccountEntry entry(const std::string& account, const Day& day, std::int64_t moved,
                   std::int64_t balance, const money::CurrencyCode& currency = "EGP") {
  return {.account = account,
          .date = day,
          .change = Money{moved, currency},
          .balance = Money{balance, currency}};
}

TEST(FiguresOfAccounts, AreOneForEachAccountAndCurrency) {
  const auto all =
      accountFigures({entry("1111", "2026-11-01", -5, 95), entry("2222", "2026-11-01", -5, 10),
                      entry("2222", "2026-11-02", -5, 50, "USD")},
                     {{.digits = "2222", .name = "Salary"}});
  ASSERT_THAT(all, SizeIs(3));
  EXPECT_EQ(all[0].account, "1111");
  EXPECT_EQ(all[0].name, "");
  EXPECT_EQ(all[1].name, "Salary");
  EXPECT_EQ(all[1].balance, (Money{10, "EGP"}));
  EXPECT_EQ(all[2].balance, (Money{50, "USD"}));
  EXPECT_EQ(all[2].balanceDate, Day("2026-11-02"));
}

TEST(FiguresOfAccounts, HaveNoBalanceWhereNoMessageStatesOne) {
  AccountEntry one = entry("1111", "2026-11-01", -5, 0);
  one.balance.reset();
  const auto all = accountFigures({one}, {});
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_FALSE(all[0].balance);
  EXPECT_EQ(all[0].currency.text(), "EGP");
}

TEST(FiguresOfAccounts, CountTheOriginalSumInTheCurrencyOfTheBalance) {
  AccountEntry converted = entry("1111", "2026-11-02", -4850, 0);
  converted.original = Money{-100, "USD"};
  converted.balance = Money{900, "USD"};
  const auto all = accountFigures({entry("1111", "2026-11-01", -5, 1000, "USD"), converted}, {});
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_THAT(all[0].gaps, IsEmpty());
}

TEST(FiguresOfAccounts, LeaveAGapForAnEntryInReview) {
  AccountEntry review = entry("1111", "2026-11-02", -5, 90);
  review.isBooked = false;
  const auto all = accountFigures({entry("1111", "2026-11-01", -5, 95), review}, {});
  EXPECT_THAT(all.at(0).gaps, ElementsAre(Gap{"2026-11-01", "2026-11-02", 5}));
}

TEST(FiguresOfAccounts, LeaveNoGapForASecondMessageOfAPaymentInReview) {
  AccountEntry second = entry("1111", "2026-11-02", -5, 95);
  second.isBooked = false;
  second.isAlike = true;
  const auto all = accountFigures(
      {entry("1111", "2026-11-02", -5, 95), second, entry("1111", "2026-11-02", -5, 90)}, {});
  EXPECT_THAT(all.at(0).gaps, IsEmpty());
}

TEST(FiguresOfAccounts, TakeTheBalanceOfACreditCardForADebtWhereThatFits) {
  const auto all =
      accountFigures({entry("1111", "2026-11-01", -5, 100), entry("1111", "2026-11-02", -7, 107)},
                     {{.digits = "1111", .isCredit = true}});
  EXPECT_EQ(all.at(0).kind, AccountFigures::Balance::debt);
  EXPECT_EQ(all.at(0).balance, (Money{107, "EGP"}));
  EXPECT_THAT(all.at(0).gaps, IsEmpty());
}

TEST(FiguresOfAccounts, TakeTheBalanceOfACreditCardForALimitWhereThatFits) {
  const auto all =
      accountFigures({entry("1111", "2026-11-01", -5, 100), entry("1111", "2026-11-02", -7, 93)},
                     {{.digits = "1111", .isCredit = true}});
  EXPECT_EQ(all.at(0).kind, AccountFigures::Balance::limit);
  EXPECT_THAT(all.at(0).gaps, IsEmpty());
}

TEST(FiguresOfAccounts, ShowMissingPaymentsOfADebtAsGapsAboveZero) {
  const auto all =
      accountFigures({entry("1111", "2026-11-01", -5, 100), entry("1111", "2026-11-02", -7, 107),
                      entry("1111", "2026-11-05", -1, 128)},
                     {{.digits = "1111", .isCredit = true}});
  EXPECT_THAT(all.at(0).gaps, ElementsAre(Gap{"2026-11-02", "2026-11-05", 20}));
}

}  // namespace
}  // namespace kivo::overview
