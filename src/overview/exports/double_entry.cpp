#include "overview/exports/double_entry.h"

#include <algorithm>
#include <cstdlib>

#include "book/account.h"
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

std::string bankAccount(std::string_view account, LevelName levelName) {
  if (account == book::cashAccount) return "Assets:Cash";
  const std::string own = levelName(account);
  return own.empty() ? "Assets:Bank" : "Assets:Bank:" + own;
}

DoubleEntry doubleEntryOf(const ExportedMovement& movement, LevelName levelName) {
  const LedgerEntry& entry = *movement.entry;
  DoubleEntry made;
  const std::string category = oneLine(entry.category);
  const bool isTransfer = countedKind(entry) == Kind::transfer;
  const bool isOfCash = isTransfer && entry.category == book::cashCategory;
  const std::string named = isTransfer ? "Transfers" : accountOf(entry.category, levelName);
  const bool isIncome = entry.kind == Kind::income && !entry.refund;
  const char* const root = isTransfer ? "Equity:" : isIncome ? "Income:" : "Expenses:";
  made.otherAccount = movement.into != nullptr ? bankAccount(movement.into->account, levelName)
                      : isOfCash               ? bankAccount(book::cashAccount, levelName)
                                               : root + named;
  if (named != category && !isOfCash) made.unnamedCategory = category;
  made.ownAccount = bankAccount(entry.account, levelName);
  made.toOther = made.toOwn = *entry.amount;
  Money& leaving = entry.incoming ? made.toOther : made.toOwn;
  leaving.minorUnits = -leaving.minorUnits;
  if (movement.into == nullptr && entry.original && isBookable(*entry.original)) {
    made.original = entry.original;
    if (entry.incoming) made.original->minorUnits = -made.original->minorUnits;
  }
  return made;
}

std::string otherSumText(const DoubleEntry& made) {
  if (!made.original) return sumText(made.toOther);
  // A total price has no sign.
  Money price = made.toOther;
  price.minorUnits = std::abs(price.minorUnits);
  return sumText(*made.original) + " @@ " + sumText(price);
}

}  // namespace kivo::overview
