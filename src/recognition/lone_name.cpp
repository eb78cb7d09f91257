#include "recognition/lone_name.h"

#include <algorithm>
#include <cctype>
#include <vector>

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
  return items[at].glued && (isMark(items[at], marks) || behindMark);
}

// In "Kite Bank Card 1234" the name is the bank's. Scripts without capitals need a mark on both
// sides: "3.500 د.ك - كافيه - بطاقة".
bool mayStandAlone(const AnalysedMessage& message, std::size_t begin, std::size_t end) {
  const Items& items = message.items;
  const auto behind = std::ranges::lower_bound(message.wordings, end, {}, &Found::begin);
  if (behind != message.wordings.end() && behind->begin == end && behind->is(Marker::own)) {
    return false;
  }
  constexpr std::string_view marks = "-|,/";
  const bool latin = static_cast<unsigned char>(items[begin].text.front()) < 0x80;
  return latin ||
         (end < items.size() && isMark(items[begin - 1], marks) && isMark(items[end], marks));
}

}  // namespace

bool beginsLikeAName(const AnalysedMessage& message, std::size_t at) {
  const Item& item = message.items[at];
  const auto first = static_cast<unsigned char>(message.text[item.begin]);
  return item.kind == Item::Kind::word && (first >= 0x80 || std::isupper(first) != 0);
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
    const bool isSignature =
        at >= items.size() && !(capitals && items[begin - 1].kind == Item::Kind::sum);
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
