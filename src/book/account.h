// The user's own accounts, by the digits that messages show.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "money/day.h"
#include "money/money.h"

namespace kivo::book {

/// The digits of the account of cash: it is kept while withdrawals are transfers to it.
inline constexpr const char* cashAccount = "Cash";
/// The category of withdrawals, and of transfers to that account and from it.
inline constexpr const char* cashCategory = "Cash";

/// What the user said of an account.
struct Account {
  /// As in the messages, or `cashAccount`.
  std::string digits;
  /// Empty for none.
  std::string name = {};
  /// Whether its balance is a limit or a debt.
  bool isCredit = false;

  bool operator==(const Account&) const = default;
};

/// An entry of an account, as far as its balance concerns it.
struct AccountEntry {
  std::int64_t id = 0;
  std::string account;
  money::Day date;
  /// Whether it is booked; else it is in review.
  bool isBooked = true;
  /// Whether it looks like an earlier entry.
  bool isAlike = false;
  /// Above zero for a sum that came into the account, below for one that left it; absent when it is
  /// not known.
  std::optional<money::Money> change = {};
  /// As `change`, in the currency of the message; absent when the sum was not converted.
  std::optional<money::Money> original = {};
  /// The balance after it, where the message states one.
  std::optional<money::Money> balance = {};
};

}  // namespace kivo::book
