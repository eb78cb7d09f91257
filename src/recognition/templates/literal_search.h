// Searches for literal texts, in time linear in the lengths of both for every input.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::recognition {

/// Calls `found` with the end position of each occurrence of `literal` in `text`, in ascending
/// order and including overlapping ones, until `found` returns false. An empty literal occurs at
/// each position.
template <class Found>
void forEachEnd(std::string_view text, std::string_view literal, Found found) {
  // The failure function of Knuth, Morris and Pratt: for each prefix of the literal, the length of
  // its longest proper suffix that is also a prefix.
  std::vector<std::size_t> front(literal.size() + 1, 0);
  for (std::size_t at = 1, fits = 0; at < literal.size(); ++at) {
    while (fits > 0 && literal[at] != literal[fits]) fits = front[fits];
    if (literal[at] == literal[fits]) ++fits;
    front[at + 1] = fits;
  }
  std::size_t fits = 0;
  if (literal.empty() && !found(std::size_t{0})) return;
  for (std::size_t at = 0; at < text.size(); ++at) {
    while (fits > 0 && (fits == literal.size() || text[at] != literal[fits])) fits = front[fits];
    if (fits < literal.size() && text[at] == literal[fits]) ++fits;
    if (fits == literal.size() && !found(at + 1)) return;
  }
}

/// Returns the length of the shortest prefix of `text` that begins with the first of `literals`,
/// ends with the last, and has all in this order with at least one byte between two of them;
/// nullopt when no prefix has. `literals` must not be empty.
std::optional<std::size_t> shortestPrefix(std::string_view text,
                                          std::span<const std::string> literals);

}  // namespace kivo::recognition
