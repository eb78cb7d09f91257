// Puts the entries of one account in an order in which the stated balances follow from each other,
// and finds where they do not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "money/day.h"

namespace kivo::overview {

/// An entry of the account, in minor units of its currency.
struct Link {
  money::Day date;
  /// What its message moved, by which it finds its place; below zero when the money left.
  std::int64_t moved = 0;
  /// What the book counts of it.
  std::int64_t booked = 0;
  /// The balance after it; absent when its message states none.
  std::optional<std::int64_t> balance = {};
};

/// Two balances that differ by something else than the booked sums between them.
struct Gap {
  money::Day from;
  money::Day to;
  /// Above zero when the later balance is lower than the booked sums explain.
  std::int64_t amount = 0;

  bool operator==(const Gap&) const = default;
};

struct BalanceChain {
  std::vector<Gap> gaps = {};
  /// The index of the link with the last stated balance; absent when there is none.
  std::optional<std::size_t> last = {};
  /// That balance, and what was booked after it; 0 without one.
  std::int64_t now = 0;
};

/// Returns the chain of `links`, which are in the order of their days and, of one day, of their
/// arrival. Only links of one day or of adjacent days change places, and the order of arrival stays
/// where no other leaves fewer gaps.
BalanceChain balanceChain(const std::vector<Link>& links);

}  // namespace kivo::overview
