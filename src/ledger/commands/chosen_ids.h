// Reads the ids of several transactions: "3 5 7-9". Does not open the book.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kivo::ledger {

/// The ids from `first` to `last`, both included; a single id is a range of one.
struct IdRange {
  std::int64_t first;
  std::int64_t last;

  bool operator==(const IdRange&) const = default;
};

/// The most ids that one range may have.
inline constexpr std::int64_t mostIdsOfARange = 1000;

/// Returns the ids and ranges of `text`, which are parted by blanks, in their order. Throws
/// BadUsage for a word that is neither, and for a range that is reversed or has more than
/// `mostIdsOfARange`.
std::vector<IdRange> idRangesFrom(const std::string& text);

}  // namespace kivo::ledger
