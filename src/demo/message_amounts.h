// The sums of money that a bank message states. Does not judge which of them was moved.
#pragma once

#include <string_view>
#include <vector>

namespace kivo {

/// A number of a message, with the place it takes, its currency's word included.
struct StatedNumber {
  std::size_t begin = 0;
  std::size_t end = 0;
  double value = 0;
  /// The ISO 4217 code of the currency beside it; empty without one.
  std::string_view currency = {};
  /// Its digits end with a point or comma and two digits.
  bool hasCents = false;
  /// A piece of a date, of a time of day or of a masked card number.
  bool isPiece = false;
};

/// The numbers of `folded` (the folded form of MessageText), in order. Both 1,234.56 and 1.234,56
/// are read; a lone separator before three digits groups thousands, unless the currency has three
/// decimals and it is a point.
std::vector<StatedNumber> statedNumbers(std::string_view folded);

}  // namespace kivo
