// Converts an amount, the number of a sum as it is written, into minor units.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kivo::recognition {

/// The minor units of `amount` (such as "1,50,000.00", "1.234,56", "5.000", ".93") by the habits of
/// `currency`. Absent when it exceeds `largestSum`, has more decimals than the currency, holds
/// anything but digits and separators, or can be read in two ways: a wrong sum is worse than none.
std::optional<std::int64_t> minorUnitsOf(std::string_view amount, std::string_view currency);

}  // namespace kivo::recognition
