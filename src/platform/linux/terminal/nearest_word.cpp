#include "platform/linux/terminal/nearest_word.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace kivo::linux_platform {
namespace {

bool isSameLetter(char one, char other) {
  return std::tolower(static_cast<unsigned char>(one)) ==
         std::tolower(static_cast<unsigned char>(other));
}

// The Damerau-Levenshtein distance in its optimal string alignment variant.
std::size_t distance(const std::string& from, const std::string& to) {
  std::vector<std::vector<std::size_t>> edits(from.size() + 1,
                                              std::vector<std::size_t>(to.size() + 1));
  for (std::size_t i = 0; i <= from.size(); ++i) edits[i][0] = i;
  for (std::size_t j = 0; j <= to.size(); ++j) edits[0][j] = j;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t change = isSameLetter(from[i - 1], to[j - 1]) ? 0 : 1;
      edits[i][j] =
          std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, edits[i - 1][j - 1] + change});
      const bool swapped = i > 1 && j > 1 && isSameLetter(from[i - 1], to[j - 2]) &&
                           isSameLetter(from[i - 2], to[j - 1]);
      if (swapped) edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
    }
  }
  return edits[from.size()][to.size()];
}

}  // namespace

std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& candidates) {
  std::optional<std::string> nearest;
  std::size_t fewest = 0;
  for (const std::string& candidate : candidates) {
    const std::size_t edits = distance(word, candidate);
    if (edits > std::max(word.size(), candidate.size()) / 3) continue;
    if (nearest && edits >= fewest) continue;
    nearest = candidate;
    fewest = edits;
  }
  return nearest;
}

}  // namespace kivo::linux_platform
