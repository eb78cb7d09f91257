#include "recognition/wordings.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <tuple>

#include "recognition/spelling.h"

namespace kivo::recognition {

namespace {

struct Wording {
  Meaning meaning;
  std::string_view words;
};

// The meanings by the names that wordings.def uses.
namespace named {
using enum Move;
using enum Status;
using enum SumRole;
using enum Marker;
using enum Plain;
}  // namespace named

constexpr auto wordings = std::to_array<Wording>({
#define WORDING(meaning, words, example, reading) {named::meaning, words},
#include "recognition/wordings.def"
#undef WORDING
});

struct Element {
  enum class Kind { word, front, sum, name, gap };
  Kind kind = Kind::word;
  std::string text = {};
};

constexpr std::size_t longestGap = 8;
constexpr std::string_view sumKey = "#";

Element elementOf(const Item& item) {
  if (item.text == "#") return {Element::Kind::sum};
  if (item.text == "^") return {Element::Kind::name};
  if (item.text == "_") return {Element::Kind::gap};
  return {Element::Kind::word, item.text};
}

// No word with an open end has fewer than three characters.
std::string openKey(std::string_view word) {
  constexpr int characters = 3;
  std::size_t length = 0;
  for (int seen = 0; seen < characters; ++seen) length += characterLength(word.substr(length));
  return std::string(word.substr(0, length)) + "~";
}

std::string keyOf(const Element& first) {
  if (first.kind == Element::Kind::sum) return std::string(sumKey);
  return first.kind == Element::Kind::front ? openKey(first.text) : first.text;
}

}  // namespace

struct WordingPattern {
  Meaning meaning = Plain::plain;
  bool payeePrecedes = false;
  std::vector<Element> elements = {};
  // The first word; of a word with an open end only its first characters, and "~"; "#" for a sum.
  std::string key = {};
  std::size_t letters = 0;  // of all its words, in bytes
};

namespace {

WordingPattern patternOf(const Wording& wording) {
  WordingPattern pattern{.meaning = wording.meaning};
  for (const Item& item : itemsOf(wording.words)) {
    if (item.text == "~") {
      pattern.elements.back().kind = Element::Kind::front;
    } else if (item.text == "^" && pattern.elements.empty()) {
      pattern.payeePrecedes = true;
    } else {
      pattern.elements.push_back(elementOf(item));
    }
  }
  pattern.key = keyOf(pattern.elements.front());
  for (const Element& element : pattern.elements) pattern.letters += element.text.size();
  return pattern;
}

// In the order of wordings.def.
const std::vector<WordingPattern>& compiled() {
  static const std::vector<WordingPattern> patterns = [] {
    std::vector<WordingPattern> all;
    for (const Wording& wording : wordings) all.push_back(patternOf(wording));
    return all;
  }();
  return patterns;
}

// The word without Arabic "and" and the article, which are written together with it: "والرصيد".
std::string_view withoutPrefix(std::string_view word) {
  constexpr std::string_view conjunction = "و";
  constexpr std::string_view article = "ال";
  constexpr std::size_t shortest = 6;  // three letters of two bytes
  if (word.starts_with(conjunction) && word.size() >= conjunction.size() + shortest) {
    word.remove_prefix(conjunction.size());
  }
  if (word.starts_with(article) && word.size() >= article.size() + shortest) {
    word.remove_prefix(article.size());
  }
  return word;
}

bool fits(const Element& element, const Item& item) {
  if (item.named) return false;
  if (element.kind == Element::Kind::sum) return item.kind == Item::Kind::sum;
  if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak) return false;
  const std::string_view bare = withoutPrefix(item.text);
  return element.kind == Element::Kind::front
             ? item.text.starts_with(element.text) || bare.starts_with(element.text)
             : item.text == element.text || bare == element.text;
}

// The end of the match of the elements from `element` on at `at`, or absent. A gap spans a few
// items of one sentence.
std::optional<std::size_t> endOfMatch(const std::vector<Element>& elements, std::size_t element,
                                      const Items& items, std::size_t at) {
  for (; element < elements.size(); ++element, ++at) {
    const bool last = element + 1 == elements.size();
    if (elements[element].kind == Element::Kind::name) return at;
    if (elements[element].kind == Element::Kind::gap) {
      for (std::size_t skipped = 0; skipped <= longestGap && at + skipped < items.size();
           ++skipped) {
        if (skipped > 0 && items[at + skipped - 1].kind == Item::Kind::lineBreak) break;
        if (skipped > 0 && items[at + skipped].startsSentence) break;
        if (const auto end = endOfMatch(elements, element + 1, items, at + skipped)) return end;
      }
      return std::nullopt;
    }
    if (at >= items.size() || !fits(elements[element], items[at])) return std::nullopt;
    // A sum at the end is not part of the match, so that it may begin the next wording.
    if (last && element > 0 && elements[element].kind == Element::Kind::sum) return at;
  }
  return at;
}

// A match of a pattern. The longer one counts: by elements, then by items, then by letters, since
// "yatirilacak~" and "yatiril~" match the same word.
struct Match {
  const WordingPattern* pattern = nullptr;
  std::size_t end = 0;

  [[nodiscard]] bool isLonger(const Match& other) const {
    if (other.pattern == nullptr) return true;
    return std::tuple(pattern->elements.size(), end, pattern->letters) >
           std::tuple(other.pattern->elements.size(), other.end, other.pattern->letters);
  }
};

// Replaces `longest` by the longest of `patterns` that matches at `at`, if that is longer.
void findLonger(std::span<const WordingPattern* const> patterns, const Items& items, std::size_t at,
                Match& longest) {
  for (const WordingPattern* const pattern : patterns) {
    const auto end = endOfMatch(pattern->elements, 0, items, at);
    if (!end) continue;
    const Match match{.pattern = pattern, .end = *end};
    if (match.isLonger(longest)) longest = match;
  }
}

}  // namespace

bool holds(std::span<const Found> found, Meaning meaning) {
  return std::ranges::any_of(found,
                             [meaning](const Found& wording) { return wording.is(meaning); });
}

Wordings::Wordings() {
  for (const WordingPattern& pattern : compiled()) patterns_.push_back(&pattern);
  std::ranges::stable_sort(patterns_, {}, &WordingPattern::key);
  index();
}

void Wordings::index() {
  withKey_.clear();
  withKey_.reserve(patterns_.size());
  for (std::size_t begin = 0, end = 0; begin < patterns_.size(); begin = end) {
    const std::string& key = patterns_[begin]->key;
    while (end < patterns_.size() && patterns_[end]->key == key) ++end;
    withKey_.emplace(key, Range{.begin = begin, .end = end});
  }
}

const Wordings& Wordings::all() {
  static const Wordings every;
  return every;
}

Wordings Wordings::allBut(std::size_t index) {
  Wordings rest = all();
  std::erase(rest.patterns_, &compiled().at(index));
  rest.index();
  return rest;
}

std::optional<Found> Wordings::longestAt(const Items& items, std::size_t at) const {
  Match longest;
  const auto findUnder = [&](std::string_view key) {
    const auto found = withKey_.find(key);
    if (found == withKey_.end()) return;
    const auto [begin, end] = found->second;
    findLonger(std::span(patterns_).subspan(begin, end - begin), items, at, longest);
  };
  const Item& item = items[at];
  if (item.kind == Item::Kind::sum) {
    findUnder(sumKey);
  } else if (!item.text.empty()) {
    findUnder(item.text);
  }
  if (item.kind == Item::Kind::word) {
    findUnder(openKey(item.text));
    const std::string_view bare = withoutPrefix(item.text);
    if (bare.size() != item.text.size()) {
      findUnder(bare);
      findUnder(openKey(bare));
    }
  }
  if (longest.pattern == nullptr) return std::nullopt;
  return Found{.meaning = longest.pattern->meaning,
               .begin = at,
               .end = longest.end,
               .payeeFollows = longest.pattern->elements.back().kind == Element::Kind::name,
               .payeePrecedes = longest.pattern->payeePrecedes};
}

std::vector<Found> Wordings::foundIn(const Items& items) const {
  std::vector<Found> found;
  for (std::size_t at = 0; at < items.size();) {
    const auto longest = longestAt(items, at);
    if (longest) found.push_back(*longest);
    at = longest ? std::max(longest->end, at + 1) : at + 1;
  }
  return found;
}

bool Wordings::anyEndsAt(const Items& items, std::size_t end, Meaning meaning) const {
  constexpr std::size_t mostItems = 4;
  for (std::size_t length = 1; length <= std::min(mostItems, end); ++length) {
    const auto longest = longestAt(items, end - length);
    if (longest && longest->is(meaning) && longest->end == end) return true;
  }
  return false;
}

}  // namespace kivo::recognition
