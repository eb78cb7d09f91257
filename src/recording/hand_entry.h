// Enters a payment that no message reports, such as one in cash. Asks the user nothing.
#pragma once

#include <string>

#include "book/book.h"

namespace kivo::recording {

/// A payment as the user states it.
struct HandEntry {
  /// The user of the messages beside which it is looked at.
  std::string userId;
  money::Day date;
  money::Kind kind = money::Kind::expense;
  money::Money amount;
  std::string payee;
  /// The digits of the account; empty for none.
  std::string account = {};
};

/// Adds `payment` to `book`, in review, under a random key that begins with "by-hand-": with a
/// category by the payee's name, the user's corrections for the payee, and marked where it looks
/// like another entry. Returns the entry. Call it in a step. Throws BookFailure.
book::LedgerEntry addByHand(book::Book& book, const HandEntry& payment);

}  // namespace kivo::recording
