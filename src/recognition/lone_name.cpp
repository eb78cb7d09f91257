#include "recognition/lone_name.h"

#include <algorithm>
#include <array>
#include <iterator>
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

// Whether item `at` is the number of a branch at the end of a name: "LIDL 114, card 4410".
bool endsWithNumber(const Items& items, std::size_t at) {
  constexpr std::size_t longest = 4;
  const Item& item = items[at];
  if (item.kind != Item::Kind::number || item.isPiece || item.glued || at + 1 >= items.size()) {
    return false;
  }
  const Item& next = items[at + 1];
  const bool digits = item.text.find_first_not_of("0123456789") == std::string::npos;
  return items[at - 1].capitals && digits && item.text.size() <= longest &&
         (isMark(next, ",") || next.isPiece);
}

// In "Kite Bank Card 1234" the name is the bank's, but not in "500 KZT DALA MARKET karta 1234".
// Scripts without capitals need a mark on both sides, "3.500 د.ك - كافيه - بطاقة", or a sum and a
// date: "6,700원 솔카페 04/12". "Mobile service" is prose.
bool mayStandAlone(const AnalysedMessage& message, std::size_t begin, std::size_t end) {
  const Items& items = message.items;
  const auto behind = std::ranges::lower_bound(message.wordings, end, {}, &Found::begin);
  const bool known = behind != message.wordings.end() && behind->begin == end;
  const bool cased = names::caseOfFirst(items[begin].text) != names::LetterCase::none;
  const bool latin = static_cast<unsigned char>(items[begin].text.front()) < 0x80;
  const bool besideSum =
      (items[begin].capitals || (cased && !latin)) && items[begin - 1].kind == Item::Kind::sum;
  // "KD 7.350 PURCHASE FERN BOOKS CARD 9920"
  const bool behindMove = behind != message.wordings.begin() && std::prev(behind)->end == begin &&
                          std::prev(behind)->as<Move>() != nullptr && items[begin].capitals &&
                          end > begin + 1;
  if (known && behind->is(Marker::own) && !besideSum && !behindMove) return false;
  const bool small = end < items.size() && items[end].kind == Item::Kind::word && !known &&
                     !beginsLikeAName(message, end);
  if (small && end == begin + 1 && !items[begin].capitals) return false;
  constexpr std::string_view marks = "-|,/";
  if (cased || end >= items.size()) return cased;
  const bool besideDate = items[begin - 1].kind == Item::Kind::sum && items[end].isPiece;
  const bool line =
      items[begin - 1].kind == Item::Kind::lineBreak && items[end].kind == Item::Kind::lineBreak;
  return besideDate || line || (isMark(items[begin - 1], marks) && isMark(items[end], marks));
}

// Whether a number or a word of the bank follows, which the items describe: "STAN 220011",
// "Remaining Bal".
bool isLabel(const AnalysedMessage& message, std::size_t begin, std::size_t end) {
  const Items& items = message.items;
  if (items[begin].isPiece || end >= items.size()) return false;
  if (end == begin + 1 && items[end].kind == Item::Kind::number && !isAddress(items[begin])) {
    constexpr std::size_t shortest = 5;  // "APTEKA 12" is a shop
    return (!items[end].isPiece && items[end].text.size() >= shortest) ||
           (end + 1 < items.size() && isMark(items[end + 1], "%"));
  }
  const auto behind = std::ranges::lower_bound(message.wordings, end, {}, &Found::begin);
  if (behind == message.wordings.end() || behind->begin != end || end > begin + 1) return false;
  const bool role = behind->as<SumRole>() != nullptr && !items[begin].capitals;
  return !items[end].startsSentence &&
         (role || behind->is(Marker::reference) || behind->as<Move>() != nullptr);
}

// Whether the items fill a line or the space between two marks.
bool isField(const Items& items, std::size_t begin, std::size_t end) {
  const auto separates = [](const Item& item) {
    return item.kind == Item::Kind::lineBreak || item.kind == Item::Kind::sum ||
           isMark(item, ",;|") || item.text == "·";
  };
  const auto dash = [&](std::size_t at) { return isMark(items[at], "-") && !items[at].glued; };
  return begin > 0 && end < items.size() && (separates(items[begin - 1]) || dash(begin - 1)) &&
         (separates(items[end]) || dash(end));
}

}  // namespace

bool beginsLikeAName(const AnalysedMessage& message, std::size_t at) {
  const Item& item = message.items[at];
  return item.kind == Item::Kind::word &&
         (isAddress(item) ||
          names::caseOfFirst(message.text.substr(item.begin)) != names::LetterCase::small);
}

// "$48.13 CAD, TIMBERLINE CO-OP, card 0031", "card *2280 FARMACIA SOL 10-11-26"
std::string loneName(const AnalysedMessage& message, std::size_t end) {
  const Items& items = message.items;
  const std::vector<bool> explained = explainedItems(message);
  const auto isNameWord = [&](std::size_t at) {
    return !explained[at] && beginsLikeAName(message, at);
  };
  std::array<std::string, 4> best;  // by rank, the first of each
  std::size_t at = 0;
  while (at < items.size() && items[at].kind != Item::Kind::sum) ++at;
  while (++at < end) {
    if (!isNameWord(at)) continue;
    const std::size_t begin = at;
    bool capitals = true;
    for (; at < end && !(at > begin && isAddress(items[begin])) &&
           (isNameWord(at) || (at > begin && (continuesName(items, at) || items[at].named)));
         ++at) {
      capitals = capitals && (items[at].capitals || items[at].kind != Item::Kind::word);
    }
    if (at < end && endsWithNumber(items, at)) ++at;
    const bool last = at >= items.size() || (isMark(items[at], ".") && at + 1 == items.size());
    const bool isSignature = last && !(capitals && items[begin - 1].kind == Item::Kind::sum);
    // "5,600원 04/02 09:12 봄편의점"
    const bool dated = last && isUnspaced(items[begin].text) &&
                       (items[begin - 1].isPiece || items[begin - 1].text == "불");
    if (!dated &&
        (isSignature || isLabel(message, begin, at) || !mayStandAlone(message, begin, at))) {
      continue;
    }
    if (namesLoan(items, begin, at)) continue;
    std::string name = nameBetween(message, begin, at);
    if (name.empty()) continue;
    constexpr std::size_t shortest = 4;
    const bool field = isField(items, begin, at);
    if (name.size() < shortest && !field) continue;
    const std::size_t rank = name.size() < shortest ? 3U : capitals ? 0U : field ? 1U : 2U;
    if (best.at(rank).empty()) best.at(rank) = std::move(name);
  }
  const auto found =
      std::ranges::find_if(best, [](const std::string& name) { return !name.empty(); });
  return found == best.end() ? std::string() : *found;
}

std::string nameBeforeSum(const AnalysedMessage& message) {
  const Items& items = message.items;
  const std::vector<bool> explained = explainedItems(message);
  std::size_t sum = 0;
  while (sum < items.size() && items[sum].kind != Item::Kind::sum) ++sum;
  if (sum == items.size()) return {};
  std::size_t end = sum;
  while (end > 0 && isMark(items[end - 1], ":,-|")) --end;
  std::size_t begin = end;
  while (begin > 0 && !items[begin].startsSentence &&
         ((!explained[begin - 1] && beginsLikeAName(message, begin - 1)) ||
          (items[begin].glued && isMark(items[begin - 1], "&-.'")))) {
    --begin;
  }
  if (begin == end || begin == 0) return {};
  // "Heron Bank: Rs.50.00 ..." is the sender.
  const bool line = items[begin - 1].kind == Item::Kind::lineBreak;
  const bool behindMove = std::ranges::any_of(message.wordings, [begin](const Found& wording) {
    return wording.as<Move>() != nullptr && wording.end == begin;
  });
  const bool latin = static_cast<unsigned char>(items[begin].text.front()) < 0x80;
  // "EFTPOS | Fern Pub | $12.00", "Bill paid: Fern Gas, 12.00 EGP"
  const bool field = isMark(items[begin - 1], "|") ||
                     (isMark(items[begin - 1], ":") && begin > 1 &&
                      std::ranges::any_of(message.wordings, [begin](const Found& wording) {
                        return wording.as<Move>() != nullptr && wording.end == begin - 1;
                      }));
  if (!latin || !(behindMove || field || (line && items[sum].sum.sign != '\0'))) return {};
  if (isLabel(message, begin, end) || items[begin].text == "alert") return {};
  return nameBetween(message, begin, end);
}

}  // namespace kivo::recognition
