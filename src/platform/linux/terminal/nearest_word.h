// Suggests the word that a mistyped one was probably meant to be.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kivo::linux_platform {

/// Returns the candidate that differs least from `word`, counting letters added, left out, changed
/// or swapped with the next; letter case is ignored. The first one wins among equals. Returns
/// nullopt when all differ in more than a third of the longer word.
std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& candidates);

}  // namespace kivo::linux_platform
