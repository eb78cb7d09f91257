#include "names/wildcard.h"

#include <cstddef>

namespace kivo::names {

// The first and the last text are fixed in their places. Each other one takes the first place that
// it finds, which leaves the most to those behind it.
bool fitsBetweenStars(const std::vector<std::string>& between, std::string_view text) {
  const std::string& first = between.front();
  if (between.size() == 1) return text == first;
  const std::string& last = between.back();
  if (text.size() < first.size() + last.size()) return false;
  if (!text.starts_with(first) || !text.ends_with(last)) return false;
  text.remove_prefix(first.size());
  text.remove_suffix(last.size());
  for (std::size_t at = 1; at + 1 < between.size(); ++at) {
    const std::size_t found = text.find(between[at]);
    if (found == std::string_view::npos) return false;
    text.remove_prefix(found + between[at].size());
  }
  return true;
}

}  // namespace kivo::names
