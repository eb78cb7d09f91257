// Digits with separators as a sum, by the habits of its currency. Looks at no words.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kivo::recognition {

/// The whole minor units that `digits` (such as "1,50,000.00", "1.234,56", "5.000", ".93") state in
/// `currency`. Absent when they exceed `largestSum`, have more decimals than the currency, hold
/// anything but digits and separators, or can be read in two ways: wrong money is worse than none.
std::optional<std::int64_t> minorUnitsOf(std::string_view digits, std::string_view currency);

}  // namespace kivo::recognition
