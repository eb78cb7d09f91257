// Tells which items of a message stand where a name stands, so that the words of a name are no
// wordings and its numbers no sums. Does not tell who was paid.
#pragma once

#include <cstddef>
#include <vector>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// Items of a message that are a name by their place.
struct NamePlace {
  /// Its items are [`begin`, `end`).
  std::size_t begin = 0;
  std::size_t end = 0;
  /// The last place where the name may end instead; `end` when that is clear.
  std::size_t lastEnd = 0;
};

/// The names of `message` that the words and marks around them show: behind "at", "to", "from" or a
/// label, between quotes, in front of "sent you". In order, without overlaps.
std::vector<NamePlace> namePlaces(const AnalysedMessage& message);

/// Which end of a name counts where it cannot be told.
enum class NameEnd { first, last };

/// `items` with those of `places` marked as named; sums among them are sums no more.
Items withNames(Items items, const std::vector<NamePlace>& places, NameEnd counts);

}  // namespace kivo::recognition
