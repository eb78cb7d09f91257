// Reads a bank's message as a transaction, by the wordings of wordings.def. Stores nothing and
// converts no currency.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "money/kind.h"
#include "money/money.h"

namespace kivo::recognition {

class Wordings;

/// The result of reading a message.
enum class Outcome {
  /// Money moved, in the book's currency.
  transaction,
  /// A payment that was refused: no money moved.
  declined,
  /// No money moved: a code, an offer, a balance, a bill, a request.
  notATransaction,
  /// Money seems to have moved, but the sum is in another currency, or the message can be read in
  /// more than one way. A person decides.
  needsReview,
};

/// A message as it was read. Only `outcome` and `holdsSum` are set unless `outcome` is
/// `transaction` or `needsReview`.
struct Reading {
  Outcome outcome = Outcome::notATransaction;
  /// Whether a `declined` message or one that is `notATransaction` holds a sum, also one whose
  /// digits can be read in two ways, so that a person may want to book it. False when the message
  /// announces a code, when a template says that it is no payment, and for the other outcomes.
  bool holdsSum = false;
  /// The direction of the movement; for `needsReview` the likelier one.
  money::Kind kind = money::Kind::expense;
  /// Of an income: whether it gives back a payment. Else false.
  bool refund = false;
  /// Whether the sum came into `account`: of an income true, of an expense false, of a transfer as
  /// the message says; false when it does not say.
  bool incoming = false;
  /// The sum that moved, above zero, in its own currency. Always present for `transaction`; absent
  /// for `needsReview` when no sum could be chosen.
  std::optional<money::Money> amount = {};
  /// The other party of the payment as the message writes it, on one line, 60 bytes of UTF-8 at
  /// most; empty when the message names none.
  std::string payee = {};
  /// The text that lists show: the payee, else the kind of movement such as "Card payment"; never
  /// empty.
  std::string description = {};
  /// A category by the payee's name or the kind of movement; "Other" when nothing suggests one.
  std::string category = {};
  /// The last digits of the person's own account or card as the message shows them; else empty.
  std::string account = {};
  /// The bank's reference (UTR, RRN, transaction number); else empty.
  std::string reference = {};
  /// The balance after the movement, where the message states one.
  std::optional<money::Money> balance = {};

  bool operator==(const Reading&) const = default;
};

/// The length of the part of a message that is read, in bytes.
inline constexpr std::size_t longestMessage = 4096;

/// The front of `text` that is read: whole characters of UTF-8, `longestMessage` bytes at most.
std::string_view partThatCounts(std::string_view text);

/// Reads `text` (UTF-8; `partThatCounts` of it) for a book kept in `bookCurrency` (ISO 4217).
/// An ambiguous sign such as "$" or "Rs" is the book's currency where that uses it. A sum in
/// another currency yields `needsReview` with its own currency. Time is linear in the length of the
/// text. Throws what `foldedName` throws, and `std::bad_alloc`. Thread-safe.
Reading read(std::string_view text, const money::CurrencyCode& bookCurrency);

/// Reads as `read` does, but by `wordings` instead of all.
Reading readBy(const Wordings& wordings, std::string_view text,
               const money::CurrencyCode& bookCurrency);

}  // namespace kivo::recognition
