// Finds what a mistyped word was probably meant to be.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kivo::linux_platform {

/// The one of `candidates` that differs least from `word`, in letters added, left out, changed or
/// swapped with the next; letter case does not count. None when all differ in more than a third of
/// the longer word. The first of equally near ones.
std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& candidates);

}  // namespace kivo::linux_platform
