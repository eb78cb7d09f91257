// Finds the wordings of wordings.def in a message. Does not decide which of them counts.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "recognition/message_items.h"

namespace kivo::recognition {

// The meanings of wordings, by sort. A name belongs to one sort only. The headings of wordings.def
// explain the meanings.

/// A movement of money (movements.h).
enum class Move {
  spent,
  purchase,
  paid,
  payment,
  sent,
  transferOut,
  withdrew,
  withdrawal,
  debited,
  debit,
  fee,
  machine,
  transaction,
  creditTaken,
  credited,
  credit,
  received,
  transferIn,
  deposit,
  salary,
  refund,
  cashback,
  cardSettlement,
  ownTransfer,
};

/// A reason why a sentence reports no movement, except for `done`: that one was carried out.
enum class Status {
  code,
  warning,
  declined,
  notYet,
  planned,
  notDone,
  offer,
  urged,
  done,
};

/// The part that a sum plays. `total` is a sum of all parts, fees included.
enum class SumRole {
  amount,
  total,
  balance,
  limit,
  charge,
  aside,
  equivalent,
};

/// A word in front of or behind a payee, or in front of an account or a reference. `ends` ends a
/// name, and `footer` behind a sum the part of the message that names somebody.
enum class Marker {
  label,
  at,
  to,
  towards,
  from,
  by,
  info,
  ends,
  footer,
  own,
  reference,
};

/// No meaning. Such a wording hides the shorter ones within it: "to block", "for details".
enum class Plain { plain };

using Meaning = std::variant<Move, Status, SumRole, Marker, Plain>;

/// A wording in a message.
struct Found {
  Meaning meaning = Plain::plain;
  /// Its items are [`begin`, `end`).
  std::size_t begin = 0;
  std::size_t end = 0;
  /// The payee's name begins at `end`.
  bool payeeFollows = false;
  /// The payee's name ends at `begin`.
  bool payeePrecedes = false;

  [[nodiscard]] bool is(Meaning other) const { return meaning == other; }
  /// Its meaning if that is of the sort `Sort`, else null.
  template <class Sort>
  [[nodiscard]] const Sort* as() const {
    return std::get_if<Sort>(&meaning);
  }
};

/// Whether one of `found` has `meaning`.
bool holds(std::span<const Found> found, Meaning meaning);

struct WordingPattern;

/// The wordings to look up in messages.
class Wordings {
 public:
  /// All wordings, compiled at the first call. Thread-safe; lives as long as the process.
  static const Wordings& all();

  /// All but the one with this index in wordings.def, the first being 0.
  static Wordings allBut(std::size_t index);

  /// The wordings in `items` from left to right. They do not overlap: at each item the longest
  /// counts.
  [[nodiscard]] std::vector<Found> foundIn(const Items& items) const;

  /// Whether a wording of `meaning` without sums or names ends in front of `items[end]`.
  [[nodiscard]] bool anyEndsAt(const Items& items, std::size_t end, Meaning meaning) const;

 private:
  Wordings();
  [[nodiscard]] std::optional<Found> longestAt(const Items& items, std::size_t at) const;

  void index();

  // Of `patterns_`: [`begin`, `end`).
  struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  std::vector<const WordingPattern*> patterns_;          // ordered by their keys
  std::unordered_map<std::string_view, Range> withKey_;  // the patterns with each key
};

}  // namespace kivo::recognition
