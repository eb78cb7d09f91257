// An entry as two postings that balance, for the formats of double-entry bookkeeping.
#pragma once

#include <string>
#include <string_view>

#include "ledger/ledger_entry.h"

namespace kivo::ledger {

struct DoubleEntry {
  /// "Expenses:Groceries" or "Income:Salary", with a level more for each colon in the category;
  /// "Equity:Transfers" for a transfer.
  std::string otherAccount;
  /// "Assets:Bank:4821"; "Assets:Bank" when the message shows no digits.
  std::string ownAccount;
  /// What is posted to `otherAccount`; `toOwn` is its opposite. A transfer leaves the own account.
  Money toOther;
  Money toOwn;
  /// The category, on one line, where `otherAccount` does not name it as it is; else empty.
  std::string unnamedCategory;
};

/// Makes a text one level of an account's name by the rules of a format; empty when nothing of it
/// can stay.
using LevelName = std::string (*)(std::string_view text);

/// `entry`, which has a sum. A category of which nothing can stay is "Other".
DoubleEntry doubleEntryOf(const LedgerEntry& entry, LevelName levelName);

}  // namespace kivo::ledger
