#include "recognition/lone_name.h"

#include <algorithm>
#include <vector>

#include "names/letter_case.h"
#include "recognition/name_text.h"

namespace kivo::recognition {
namespace {

// For each item, whether it belongs to a wording.
std::vector<bool> explainedItems(const AnalysedMessage& message) {
  std::vector<bool> explained(message.items.size(), false);
  for (const Found& wording : message.wordings) {
    for (std::size_t at = wording.begin; at < std::max(wording.end, wording.begin + 1); ++at) {
      explained[at] = true;
    }
  }
  return explained;
}

// Whether item `at` continues a name such as "CO-OP" or "B&B".
bool continuesName(const Items& items, std::size_t at) {
  constexpr std::string_view marks = "&-.'";
  const bool behindMark = items[at].kind == Item::Kind::word && isMark(items[at - 1], marks);
  const bool last = at + 1 >= items.size() || items[at + 1].startsSentence;
  if (isMark(items[at], ".") && last) return false;
  return items[at].glued && (isMark(items[at], marks) || behindMark);
}

// In "Kite Bank Card 1234" the name is the bank's, but not in "500 KZT DALA MARKET karta 1234".
// Scripts without capitals need a mark on both sides, "3.500 د.ك - كافيه - بطاقة", or a sum and a
// date: "6,700원 솔카페 04/12". "Mobile service" is prose.
bool mayStandAlone(const AnalysedMessage& message, std::size_t begin, std::size_t end) {
  const Items& items = message.items;
  const auto behind = std::ranges::lower_bound(message.wordings, end, {}, &Found::begin);
  const bool known = behind != message.wordings.end() && behind->begin == end;
  const bool besideSum = items[begin].capitals && items[begin - 1].kind == Item::Kind::sum;
  if (known && behind->is(Marker::own) && !besideSum) return false;
  const bool small = end < items.size() && items[end].kind == Item::Kind::word && !known &&
                     !beginsLikeAName(message, end);
  if (small && end == begin + 1 && !items[begin].capitals) return false;
  constexpr std::string_view marks = "-|,/";
  const bool cased = names::caseOfFirst(items[begin].text) != names::LetterCase::none;
  if (cased || end >= items.size()) return cased;
  const bool besideDate = items[begin - 1].kind == Item::Kind::sum && items[end].isPiece;
  return besideDate || (isMark(items[begin - 1], marks) && isMark(items[end], marks));
}

}  // namespace

bool beginsLikeAName(const AnalysedMessage& message, std::size_t at) {
  const Item& item = message.items[at];
  return item.kind == Item::Kind::word &&
         names::caseOfFirst(message.text.substr(item.begin)) != names::LetterCase::small;
}

// "$48.13 CAD, TIMBERLINE CO-OP, card 0031", "card *2280 FARMACIA SOL 10-11-26"
std::string loneName(const AnalysedMessage& message) {
  const Items& items = message.items;
  const std::vector<bool> explained = explainedItems(message);
  const auto isNameWord = [&](std::size_t at) {
    return !explained[at] && beginsLikeAName(message, at);
  };
  std::string second;
  std::size_t at = 0;
  while (at < items.size() && items[at].kind != Item::Kind::sum) ++at;
  while (++at < items.size()) {
    if (!isNameWord(at)) continue;
    const std::size_t begin = at;
    bool capitals = true;
    for (; at < items.size() && (isNameWord(at) || (at > begin && continuesName(items, at)));
         ++at) {
      capitals = capitals && (items[at].capitals || items[at].kind != Item::Kind::word);
    }
    const bool last = at >= items.size() || (isMark(items[at], ".") && at + 1 == items.size());
    const bool isSignature = last && !(capitals && items[begin - 1].kind == Item::Kind::sum);
    if (isSignature || !mayStandAlone(message, begin, at)) continue;
    std::string name = nameBetween(message, begin, at);
    constexpr std::size_t shortest = 4;
    if (name.size() < shortest) continue;
    if (capitals) return name;
    if (second.empty()) second = std::move(name);
  }
  return second;
}

}  // namespace kivo::recognition
