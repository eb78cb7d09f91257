// The part that each sum of a message plays, and the sum that moved.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "recognition/message_items.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// The sums of a message by their parts, as places among its items.
struct SumParts {
  /// The sum that moved; absent when there is no such sum.
  std::optional<std::size_t> moved;
  /// Another sum could be the one that moved, or the digits of `moved` can be read in two ways.
  bool unclear = false;
  std::optional<std::size_t> balance;
};

/// The parts of the sums in `items`, by the wordings around them, for a book in `bookCurrency`.
SumParts partsOfSums(const Items& items, std::span<const Found> found,
                     std::string_view bookCurrency);

}  // namespace kivo::recognition
