// Tells which items of a message are capitalised words, labels or the person's own account, and how
// far a run of capitals goes. Does not tell which run is a name.
#pragma once

#include <cstddef>
#include <vector>

#include "names/letter_case.h"
#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The words of one message, which has to outlive this.
class CapitalWords {
 public:
  explicit CapitalWords(const AnalysedMessage& message);

  /// The wording that begins at item `at`; null without one and behind the last item.
  [[nodiscard]] const Found* wordingAt(std::size_t at) const { return at_[at]; }

  /// The case of the first letter of item `at`.
  [[nodiscard]] names::LetterCase caseOf(std::size_t at) const;

  /// Whether item `at` is a word; false behind the last item.
  [[nodiscard]] bool isWord(std::size_t at) const;

  /// Whether item `at` is a word that begins with a capital; false behind the last item.
  [[nodiscard]] bool isCapital(std::size_t at) const;

  /// Whether item `at` is a word that begins with a small letter; false behind the last item.
  [[nodiscard]] bool isSmall(std::size_t at) const;

  /// Whether item `at` belongs to a wording.
  [[nodiscard]] bool isInWording(std::size_t at) const;

  /// Whether one of the items is a capitalised word outside of all wordings.
  [[nodiscard]] bool hasOwnWord(std::size_t begin, std::size_t end) const;

  /// Whether item `at` is a "-" behind a blank.
  [[nodiscard]] bool isDash(std::size_t at) const;

  /// Whether item `at` is a word such as "card" or "payment", which the capitals before it
  /// describe.
  [[nodiscard]] bool isNoun(std::size_t at) const;

  /// Whether a wording that begins at item `at` tells an outcome: "Declined", "Approved".
  [[nodiscard]] bool isOutcome(std::size_t at) const;

  /// Whether item `at` begins "your account", "A/c XX12" or the like.
  [[nodiscard]] bool isOwnAccount(std::size_t at) const;

  /// Whether item `at` begins a label of a number or sum, "Avl Bal 500.00", "Card ending 1234", or
  /// another part of the message.
  [[nodiscard]] bool isLabel(std::size_t at) const;

  /// The end of the capitalised words from `begin` on, with the numbers and marks among them.
  [[nodiscard]] std::size_t endOfCapitals(std::size_t begin) const;

  /// Whether item `at` is a sum, and one in the same currency is before it in its sentence: the
  /// amount was stated, so this one belongs to a name.
  [[nodiscard]] bool repeatsCurrency(std::size_t at) const;

 private:
  // Whether item `at` belongs to the run of capitals that begins at `begin`.
  [[nodiscard]] bool continuesCapitals(std::size_t at, std::size_t begin) const;
  [[nodiscard]] bool namesItsNumber(std::size_t at, std::size_t next) const;
  [[nodiscard]] bool isAmongCapitals(std::size_t at, std::size_t begin) const;
  [[nodiscard]] bool goesOnSmall(std::size_t at) const;
  [[nodiscard]] bool isPrepositionInCapitals(std::size_t at) const;

  const AnalysedMessage& message_;
  const Items& items_;
  std::vector<const Found*> at_;  // for each item, the wording that begins there, or null
};

}  // namespace kivo::recognition
