// Finds texts in a text, in time linear in the length of both, whatever they hold.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::ledger {

/// Calls `found` with each place behind an occurrence of `literal` in `text`, in order, also of
/// those that overlap, until it returns false. An empty literal occurs everywhere.
template <class Found>
void forEachEnd(std::string_view text, std::string_view literal, Found found) {
  // The Knuth-Morris-Pratt algorithm: how much of the literal's front a part of it ends with.
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

/// The length of the shortest front of `text` that is `literals` in their order, the first one at
/// its begin and at least one byte between two of them; nullopt when no front is. `literals` is not
/// empty.
std::optional<std::size_t> shortestFront(std::string_view text,
                                         std::span<const std::string> literals);

}  // namespace kivo::ledger
