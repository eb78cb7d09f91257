#include "names/name_pattern.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <unicode/utf8.h>

#include "names/name_fold.h"
#include "names/wildcard.h"

namespace kivo::names {
namespace {

constexpr std::string_view special = "*\\";

bool isSpecial(char mark) { return special.find(mark) != std::string_view::npos; }

// The texts between the stars of `folded`. Stars side by side are one.
std::vector<std::string> betweenStarsOf(std::string_view folded) {
  std::vector<std::string> between;
  between.reserve(1 + static_cast<std::size_t>(std::count(folded.begin(), folded.end(), '*')));
  between.emplace_back();
  bool behindStar = false;
  for (std::size_t at = 0; at < folded.size(); ++at) {
    if (folded[at] == '*') {
      if (!behindStar) between.emplace_back();
      behindStar = true;
      continue;
    }
    behindStar = false;
    const bool escapes = folded[at] == '\\' && at + 1 < folded.size() && isSpecial(folded[at + 1]);
    if (escapes) ++at;
    between.back() += folded[at];
  }
  return between;
}

std::size_t charactersOf(const std::vector<std::string>& texts) {
  std::size_t count = 0;
  for (const std::string& text : texts) {
    for (const char unit : text) count += U8_IS_TRAIL(unit) ? 0U : 1U;
  }
  return count;
}

}  // namespace

NamePattern::NamePattern(std::vector<std::string> betweenStars)
    : betweenStars_(std::move(betweenStars)), characters_(charactersOf(betweenStars_)) {}

std::optional<NamePattern> NamePattern::fromText(std::string_view utf8) {
  return fromFoldedText(foldedName(utf8));
}

std::optional<NamePattern> NamePattern::fromFoldedText(std::string_view folded) {
  std::vector<std::string> between = betweenStarsOf(folded);
  const auto isBlank = [](const std::string& text) {
    return text.find_first_not_of(' ') == std::string::npos;
  };
  if (std::all_of(between.begin(), between.end(), isBlank)) return std::nullopt;
  return NamePattern(std::move(between));
}

std::string NamePattern::textFor(std::string_view utf8) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
  const auto length = static_cast<std::int32_t>(utf8.size());
  std::string text;
  for (std::int32_t at = 0; at < length;) {
    const auto begin = static_cast<std::size_t>(at);
    U8_FWD_1(bytes, at, length);
    const std::string_view character = utf8.substr(begin, static_cast<std::size_t>(at) - begin);
    const std::string folded = foldedName(character);
    if (!folded.empty() && isSpecial(folded.front())) text += '\\';
    text += character;
  }
  return text;
}

std::string NamePattern::text() const {
  std::string text;
  for (const std::string& literal : betweenStars_) {
    if (&literal != &betweenStars_.front()) text += '*';
    for (const char mark : literal) {
      if (isSpecial(mark)) text += '\\';
      text += mark;
    }
  }
  return text;
}

bool NamePattern::isMoreExactThan(const NamePattern& other) const {
  if (hasWildcard() != other.hasWildcard()) return other.hasWildcard();
  return characters_ > other.characters_;
}

bool NamePattern::matches(std::string_view foldedName) const {
  return fitsBetweenStars(betweenStars_, foldedName);
}

}  // namespace kivo::names
