#include "recognition/chain_names.h"

#include <algorithm>

namespace kivo::recognition {
namespace {

// Sorted rows, each a name, a tab, a category and a line break. They are one text instead of
// thousands of objects, so that a search reads only the pages that it needs.
#define CHAIN(name, category) name "\t" #category "\n"
constexpr char knownRows[] =
#include "recognition/known_merchants.def"
    ;
constexpr char chainRows[] =
#include "recognition/chain_names.def"
    ;
#undef CHAIN
// The lengths are given, since compilers limit the steps of a constant expression.
constexpr std::string_view known(knownRows, sizeof(knownRows) - 1);
constexpr std::string_view chains(chainRows, sizeof(chainRows) - 1);

// The category of the row `name`; empty when there is no such row.
std::string_view categoryIn(std::string_view rows, std::string_view name) {
  while (!rows.empty()) {
    const std::size_t before = rows.rfind('\n', rows.size() / 2);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const std::size_t end = rows.find('\n', begin);
    const std::size_t tab = rows.find('\t', begin);
    const int order = rows.substr(begin, tab - begin).compare(name);
    if (order == 0) return rows.substr(tab + 1, end - tab - 1);
    rows = order < 0 ? rows.substr(end + 1) : rows.substr(0, begin);
  }
  return {};
}

std::string_view categoryOf(std::string_view name) {
  const std::string_view byHand = categoryIn(known, name);
  return byHand.empty() ? categoryIn(chains, name) : byHand;
}

}  // namespace

Chain chainIn(std::span<const std::string> words) {
  constexpr std::size_t mostWords = 6;
  Chain longest;
  std::string name;
  for (std::size_t count = 1; count <= std::min(words.size(), mostWords); ++count) {
    name += words[count - 1];
    const std::string_view category = categoryOf(name);
    if (!category.empty()) longest = {count, category};
  }
  return longest;
}

}  // namespace kivo::recognition
