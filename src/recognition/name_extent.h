// Decides where a payee's name may begin and where it ends in a message. Does not look for the
// name.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <vector>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The marker that introduces a name; absent when another wording does.
using Introduction = std::optional<Marker>;

/// The rules for names in one message, which has to outlive this.
class NameExtent {
 public:
  explicit NameExtent(const AnalysedMessage& message);

  /// Whether a wording with one of `meanings` begins at item `at`; false behind the last item.
  [[nodiscard]] bool isWordOf(std::size_t at, std::initializer_list<Meaning> meanings) const;

  /// The wording that begins at item `at`; null without one.
  [[nodiscard]] const Found* wordingAt(std::size_t at) const { return at_[at]; }

  /// Whether item `at` is a word of "x" alone, as in "XX7719".
  [[nodiscard]] bool isMask(std::size_t at) const;

  /// The place behind a masked account or telephone number at item `at`: "****; Ahmad",
  /// "0722000000 - JANE"; `at` without one.
  [[nodiscard]] std::size_t behindMask(std::size_t at) const;

  /// Whether a name may begin with item `at`.
  [[nodiscard]] bool mayBegin(std::size_t at) const;

  /// Whether the items [`begin`, `end`) behind `introduced` are no name. Behind "for", "by" and the
  /// like a name has a capital, unless it is an address: "lotus@upi".
  [[nodiscard]] bool isProse(Introduction introduced, std::size_t begin, std::size_t end) const;

  /// The place behind the last item of the name that begins with item `begin`.
  [[nodiscard]] std::size_t endOfName(std::size_t begin, Introduction introduced) const;

 private:
  [[nodiscard]] bool isEastAsianMove(std::size_t at) const;
  [[nodiscard]] bool followsCapitals(std::size_t at) const;
  [[nodiscard]] bool continuesBehindComma(std::size_t comma, std::size_t begin) const;
  [[nodiscard]] bool isBracketed(std::size_t at, std::size_t begin) const;
  [[nodiscard]] bool isNameWord(std::size_t at) const;
  [[nodiscard]] bool endsInitial(std::size_t point) const;
  [[nodiscard]] bool isArticle(std::size_t at) const;
  [[nodiscard]] bool isBehindName(std::size_t at, std::size_t begin, Introduction introduced) const;
  [[nodiscard]] bool endsName(std::size_t at, std::size_t begin, Introduction introduced) const;

  const AnalysedMessage& message_;
  const Items& items_;
  std::vector<const Found*> at_;  // for each item, the wording that begins there, or null
};

}  // namespace kivo::recognition
