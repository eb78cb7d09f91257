// Finds the sum that moved, and the balance, among the sums of a message.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// Sums of a message, as places among its items.
struct SumParts {
  /// The sum that moved; absent when there is no such sum.
  std::optional<std::size_t> moved;
  /// Another sum could be the one that moved, or the amount of `moved` can be read in two ways.
  bool unclear = false;
  std::optional<std::size_t> balance;
};

/// The parts that the sums of `message` play, by the wordings around them, for a book in
/// `bookCurrency`.
SumParts partsOfSums(const AnalysedMessage& message, std::string_view bookCurrency);

}  // namespace kivo::recognition
