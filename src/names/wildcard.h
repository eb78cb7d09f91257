// Matches texts against patterns in which a star stands for any characters.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kivo::names {

/// Whether `text` is the texts of `between`, which stand between the stars of a pattern, in their
/// order, with any characters, or none, in the place of each star. `between` has one text more than
/// the pattern has stars; an empty one is allowed. Compares bytes. Takes time linear in the length
/// of `text` for each text of `between`. Thread-safe.
bool fitsBetweenStars(const std::vector<std::string>& between, std::string_view text);

}  // namespace kivo::names
