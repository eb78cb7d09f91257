#include "ledger/commands/chosen_ids.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include "ledger/commands/command_options.h"
#include "platform/foundation/number_text.h"

namespace kivo::ledger {
namespace {

std::optional<std::int64_t> idFrom(const std::string& digits) {
  if (digits.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
  return platform::integerFromText(digits);
}

IdRange rangeFrom(const std::string& word) {
  const std::size_t dash = std::min(word.find('-'), word.size());
  const auto first = idFrom(word.substr(0, dash));
  const auto last = dash == word.size() ? first : idFrom(word.substr(dash + 1));
  if (!first || !last) {
    throw invalid("ID", word,
                  "a number such as 3, as list and review show it, or a range such as 3-9");
  }
  if (*last < *first) throw invalid("ID", word, "a range with the smaller number first");
  if (*last - *first >= mostIdsOfARange) {
    throw invalid("ID", word, "a range of " + std::to_string(mostIdsOfARange) + " numbers at most");
  }
  return {*first, *last};
}

}  // namespace

std::vector<IdRange> idRangesFrom(const std::string& text) {
  std::istringstream words(text);
  std::vector<IdRange> ranges;
  for (std::string word; words >> word;) ranges.push_back(rangeFrom(word));
  if (ranges.empty()) throw invalid("ID", text, "a number such as 3 or a range such as 3-9");
  return ranges;
}

}  // namespace kivo::ledger
