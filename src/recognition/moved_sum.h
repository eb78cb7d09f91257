// The part that each sum of a message plays, and the sum that moved.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The sums of a message by their parts, as places among its items.
struct SumParts {
  /// The sum that moved; absent when there is no such sum.
  std::optional<std::size_t> moved;
  /// Another sum could be the one that moved, or the digits of `moved` can be read in two ways.
  bool unclear = false;
  std::optional<std::size_t> balance;
};

/// The parts of the sums in `message`, by the wordings around them, for a book in `bookCurrency`.
SumParts partsOfSums(const AnalysedMessage& message, std::string_view bookCurrency);

}  // namespace kivo::recognition
