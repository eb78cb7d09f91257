// Equal payments that the balances of their account tell apart.
#include <gtest/gtest.h>

#include "unit/recording/ledger_test.h"

namespace kivo::book {
namespace {

class EqualPayments : public recording::LedgerTest {
 protected:
  static recognition::Reading leaving(std::int64_t balance,
                                      const money::CurrencyCode& currency = "EGP",
                                      const std::string& account = "4821") {
    recognition::Reading reading = spent(15000);
    reading.account = account;
    reading.balance = money::Money{balance, currency};
    return reading;
  }
  Book book_ = open();
};

TEST_F(EqualPayments, AreNotAlikeWhenTheyLeaveDifferentBalances) {
  recorded(book_, "KEY-1", leaving(90000));
  EXPECT_FALSE(recorded(book_, "KEY-2", leaving(75000)).possibleDuplicateOf);
}

TEST_F(EqualPayments, AreAlikeWhenTheyLeaveTheSameBalance) {
  recorded(book_, "KEY-1", leaving(90000));
  EXPECT_EQ(recorded(book_, "KEY-2", leaving(90000)).possibleDuplicateOf, 1);
}

TEST_F(EqualPayments, AreAlikeWhenOnlyOneStatesABalance) {
  recorded(book_, "KEY-1", leaving(90000));
  EXPECT_EQ(recorded(book_, "KEY-2", spent(15000)).possibleDuplicateOf, 1);
}

TEST_F(EqualPayments, AreAlikeWhenTheirBalancesAreOfTwoCurrencies) {
  recorded(book_, "KEY-1", leaving(90000));
  EXPECT_EQ(recorded(book_, "KEY-2", leaving(75000, "USD")).possibleDuplicateOf, 1);
}

TEST_F(EqualPayments, AreAlikeWhenTheirBalancesAreOfTwoAccounts) {
  recorded(book_, "KEY-1", leaving(90000));
  EXPECT_EQ(recorded(book_, "KEY-2", leaving(75000, "EGP", "7790")).possibleDuplicateOf, 1);
}

TEST_F(EqualPayments, WithDifferentBalancesStayApartWhenOneIsEdited) {
  recorded(book_, "KEY-1", leaving(90000));
  recorded(book_, "KEY-2", leaving(75000));
  recorded(book_, "KEY-3", leaving(75000));
  book_.edit(1, {.category = "Others"});
  book_.edit(2, {.category = "Others"});
  EXPECT_FALSE(book_.entry(2).value().possibleDuplicateOf);
  EXPECT_EQ(book_.entry(3).value().possibleDuplicateOf, 2);
}

}  // namespace
}  // namespace kivo::book
