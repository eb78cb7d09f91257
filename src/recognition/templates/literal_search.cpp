#include "recognition/templates/literal_search.h"

namespace kivo::recognition {

std::optional<std::size_t> shortestPrefix(std::string_view text,
                                          std::span<const std::string> literals) {
  if (!text.starts_with(literals.front())) return std::nullopt;
  std::size_t end = literals.front().size();
  for (const std::string& literal : literals.subspan(1)) {
    const std::size_t begin = end + 1;
    if (begin > text.size()) return std::nullopt;
    std::optional<std::size_t> length;
    forEachEnd(text.substr(begin), literal, [&length](std::size_t found) {
      length = found;
      return false;
    });
    if (!length) return std::nullopt;
    end = begin + *length;
  }
  return end;
}

}  // namespace kivo::recognition
