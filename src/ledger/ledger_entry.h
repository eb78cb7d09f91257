// A transaction of the book, as a value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ledger/recognition/reading.h"

namespace kivo::ledger {

struct LedgerEntry {
  enum class State {
    booked,
    /// A person decides whether it is one.
    review,
  };

  /// Given once, never to another entry.
  std::int64_t id = 0;
  /// The key that its message came under.
  std::string key;
  /// yyyy-MM-dd.
  std::string date;
  Kind kind = Kind::expense;
  /// Above zero; absent only in review, for a message whose sum could not be chosen.
  std::optional<Money> amount;
  std::string description;
  std::string category;
  /// The other party as the message wrote it; empty when it named none.
  std::string payee;
  /// The digits of the person's own account or card as the message shows them; else empty.
  std::string account;
  /// The bank's reference; else empty.
  std::string reference;
  State state = State::booked;
  /// The entry that this one looks like.
  std::optional<std::int64_t> possibleDuplicateOf;
  /// The message; absent once it was forgotten.
  std::optional<std::string> text;
};

/// Gives `entry` all that the reading of its message says.
void apply(const Reading& reading, LedgerEntry& entry);

/// "expense", "income" or "transfer".
const char* kindText(Kind kind);
/// The kind of that name; absent for another text.
std::optional<Kind> kindFromText(std::string_view text);
/// "booked" or "review".
const char* stateText(LedgerEntry::State state);

}  // namespace kivo::ledger
