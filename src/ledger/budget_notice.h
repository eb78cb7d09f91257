// Says when most of a budget is spent, and when all of it is.
#pragma once

#include <optional>
#include <string>

#include "book/book.h"

namespace kivo::ledger {

/// The texts of a notification.
struct BudgetNotice {
  std::string title;
  std::string body;

  bool operator==(const BudgetNotice&) const = default;
};

/// Returns the notification that is due after `entry` was added to `book`, which is kept in
/// `currency`: 80 or 100 % of the budget of its category are spent in the current month. Notes in
/// the book that it was said, so that each is returned once a month for each category, whichever
/// process asks. nullopt when none is due, also for an entry of another month. Throws BookFailure.
std::optional<BudgetNotice> takeBudgetNotice(book::Book& book, const book::LedgerEntry& entry,
                                             const money::CurrencyCode& currency);

}  // namespace kivo::ledger
