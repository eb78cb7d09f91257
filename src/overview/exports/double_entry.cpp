#include "overview/exports/double_entry.h"

#include <algorithm>

#include "overview/exports/export_text.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;
using money::Money;

namespace {

// The levels of `category`, joined by colons.
std::string accountOf(std::string_view category, LevelName levelName) {
  std::string account;
  while (!category.empty()) {
    const std::string_view part = category.substr(0, category.find(':'));
    category.remove_prefix(std::min(part.size() + 1, category.size()));
    const std::string level = levelName(part);
    if (level.empty()) continue;
    if (!account.empty()) account += ':';
    account += level;
  }
  return account.empty() ? "Other" : account;
}

}  // namespace

DoubleEntry doubleEntryOf(const LedgerEntry& entry, LevelName levelName) {
  DoubleEntry made;
  const std::string category = oneLine(entry.category);
  const bool isTransfer = entry.kind == Kind::transfer;
  const std::string named = isTransfer ? "Transfers" : accountOf(entry.category, levelName);
  const char* const root = isTransfer                   ? "Equity:"
                           : entry.kind == Kind::income ? "Income:"
                                                        : "Expenses:";
  made.otherAccount = root + named;
  if (named != category) made.unnamedCategory = category;
  made.ownAccount = "Assets:Bank";
  if (const std::string own = levelName(entry.account); !own.empty()) made.ownAccount += ":" + own;
  made.toOther = made.toOwn = *entry.amount;
  Money& leaving = entry.kind == Kind::income ? made.toOther : made.toOwn;
  leaving.minorUnits = -leaving.minorUnits;
  return made;
}

}  // namespace kivo::overview
