// Tells a shop's name from the town and country that card terminals write behind it.
#pragma once

#include <string_view>

namespace kivo::recognition {

/// `name` without a town and a country's code at its end, "DECATHLON CAIRO EG", or a town behind a
/// comma, "FERN MART, DUBAI". Larger towns only; at least one word stays. Throws what `foldedName`
/// throws.
std::string_view withoutTown(std::string_view name);

}  // namespace kivo::recognition
