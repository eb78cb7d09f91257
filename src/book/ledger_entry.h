// One transaction of the book.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "money/day.h"
#include "money/kind.h"
#include "money/money.h"

namespace kivo::book {

struct LedgerEntry {
  enum class State {
    booked,
    /// The user decides whether to book it.
    review,
    /// One of its values cannot be; it counts nowhere until the user corrects it.
    setAside,
  };

  /// Unique, and never reused.
  std::int64_t id = 0;
  /// The idempotency key of its message, and the user that sent it. One that was entered by hand
  /// has a key that no message has.
  std::string key;
  std::string userId;
  money::Day date;
  money::Kind kind = money::Kind::expense;
  /// Of an income: whether it gives back a payment. Else false.
  bool refund = false;
  /// Whether the sum came into `account`: of an income true, of an expense false, of a transfer as
  /// its message says; false when it does not say.
  bool incoming = false;
  /// The id of the other half of a transfer between two own accounts of which this is one; absent
  /// when it has none.
  std::optional<std::int64_t> counterpart;
  /// Above zero; absent only in review, when the message's sum is ambiguous. Of an entry that is
  /// set aside, any sum, or none.
  std::optional<money::Money> amount;
  /// The sum in the currency of the message, when `amount` was converted from it; else absent.
  std::optional<money::Money> original;
  /// The balance after the payment, where the message states one.
  std::optional<money::Money> balance;
  std::string description;
  std::string category;
  /// The other party as the message names it; empty when it names none.
  std::string payee;
  /// The digits of the user's own account or card as in the message; empty when it has none.
  std::string account;
  /// The bank's reference; empty when the message has none.
  std::string reference;
  State state = State::booked;
  /// The id of an earlier entry of which this may be a duplicate.
  std::optional<std::int64_t> possibleDuplicateOf;
  /// The text of the message; absent after `Book::forgetTexts`, and when there was no message.
  std::optional<std::string> text;
  /// Whether the user changed it with `edit`.
  bool edited = false;
  /// Of an entry that is set aside: the stored text in the place of a date that does not exist,
  /// and of a currency that is not a code. Otherwise absent.
  std::optional<std::string> impossibleDate;
  std::optional<std::string> impossibleCurrency;

  /// Returns whether both have the same state and the same of all that a message is read as.
  [[nodiscard]] bool readsAs(const LedgerEntry& other) const;
};

/// Gives `entry` the kind `kind`. With another kind than before it is no refund, and the direction
/// is that of the kind; a transfer keeps the one that it had.
void setKind(LedgerEntry& entry, money::Kind kind);

/// Whether both are booked, and may be the halves of one transfer between own accounts: of the same
/// sum and opposite directions, and no refunds.
bool fitTogether(const LedgerEntry& one, const LedgerEntry& other);

/// Returns "refund" for a refund, else the name of the kind.
const char* kindWord(const LedgerEntry& entry);

/// Returns "booked", "review" or "set_aside".
const char* stateText(LedgerEntry::State state);
/// Returns the state of that name; absent for another text.
std::optional<LedgerEntry::State> stateFromText(std::string_view text);

/// Returns the name of a value of `entry` that cannot be, such as "date"; empty when all can. An
/// entry that is set aside needs those of one in review.
std::string_view impossibleValue(const LedgerEntry& entry);

}  // namespace kivo::book
