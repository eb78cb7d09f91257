// An entry as two postings that balance, for the formats of double-entry bookkeeping.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "overview/exports/exported_movement.h"

namespace kivo::overview {

struct DoubleEntry {
  /// "Expenses:Groceries", also for a refund, or "Income:Salary", with a level more for each colon
  /// in the category; "Equity:Transfers" for a transfer, or the account that it came into, also
  /// "Assets:Cash".
  std::string otherAccount;
  /// "Assets:Bank:4821"; "Assets:Bank" when the message shows no digits.
  std::string ownAccount;
  /// The sum posted to `otherAccount`; `toOwn` is its negative.
  money::Money toOther;
  money::Money toOwn;
  /// The sum from which `toOther` was converted, with its sign; absent when it was not, and where
  /// `otherAccount` is a person's own.
  std::optional<money::Money> original = {};
  /// The category, on one line, where `otherAccount` does not name it as it is; else empty.
  std::string unnamedCategory;
};

/// The sum posted to `otherAccount`: "150.00 EGP", or with its price "20.00 USD @@ 970.00 EGP".
std::string otherSumText(const DoubleEntry& made);

/// Describes the transaction that posts the balance before all others, against "Equity:Opening".
inline constexpr const char* openingDescription = "Opening balance";
inline constexpr const char* openingAccount = "Equity:Opening";

/// Converts a text to one level of an account's name by the rules of a format; returns an empty
/// text when none of its characters can stay.
using LevelName = std::string (*)(std::string_view text);

/// Returns the name of the user's own account with these digits or that name: "Assets:Bank:4821";
/// "Assets:Bank" for an empty text, and when none of its characters can stay; "Assets:Cash".
std::string bankAccount(std::string_view account, LevelName levelName);

/// Returns the postings of `movement`, which must have a sum. A category becomes "Other" when none
/// of its characters can stay.
DoubleEntry doubleEntryOf(const ExportedMovement& movement, LevelName levelName);

}  // namespace kivo::overview
