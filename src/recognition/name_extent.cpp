#include "recognition/name_extent.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "names/letter_case.h"
#include "recognition/lone_name.h"
#include "recognition/name_text.h"

namespace kivo::recognition {

using names::LetterCase;

namespace {

bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

}  // namespace

NameExtent::NameExtent(const AnalysedMessage& message)
    : message_(message), items_(message.items), at_(items_.size(), nullptr) {
  for (const Found& wording : message.wordings) at_[wording.begin] = &wording;
}

bool NameExtent::isWordOf(std::size_t at, std::initializer_list<Meaning> meanings) const {
  return at < items_.size() && at_[at] != nullptr &&
         std::find(meanings.begin(), meanings.end(), at_[at]->meaning) != meanings.end();
}

bool NameExtent::isMask(std::size_t at) const {
  return items_[at].kind == Item::Kind::word &&
         items_[at].text.find_first_not_of('x') == std::string::npos;
}

std::size_t NameExtent::behindMask(std::size_t at) const {
  const std::size_t begin = at;
  while (at < items_.size() &&
         (isMark(items_[at], "*:-.") || items_[at].kind == Item::Kind::number || isMask(at) ||
          (items_[at].kind == Item::Kind::mark && items_[at].text.size() > 1))) {
    ++at;
  }
  if (at > begin && at < items_.size() && isMark(items_[at], ";,-/")) ++at;
  return at;
}

bool NameExtent::mayBegin(std::size_t at) const {
  const Item& item = items_[at];
  if (item.named) return true;
  if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak || item.isPiece)
    return false;
  if (isEastAsianMove(at)) return false;
  const bool initial = item.capitals && at + 1 < items_.size() && items_[at + 1].capitals;
  const bool article = !initial && (item.text == "the" || item.text == "a" || item.text == "an");
  if (article && message_.text[item.begin] != 'T') return false;
  if (isPronoun(item.text)) return false;
  if (isWordOf(at, {Marker::own, SumRole::amount, SumRole::balance, Marker::reference, Marker::ends,
                    Marker::footer, SumRole::limit, SumRole::charge, Status::code, Status::done})) {
    return false;
  }
  return true;
}

// Whether a Chinese or Korean wording of a movement begins at item `at`: "转账" in "王五转账".
bool NameExtent::isEastAsianMove(std::size_t at) const {
  const char first = items_[at].text.empty() ? ' ' : items_[at].text.front();
  const bool eastAsian = first >= '\xE4' && first <= '\xED';
  return eastAsian && at_[at] != nullptr && at_[at]->as<Move>() != nullptr;
}

// Whether the name continues behind a comma: "MAPLE HARDWARE, AUSTIN, TX for ...".
bool NameExtent::continuesBehindComma(std::size_t comma, std::size_t begin) const {
  return comma + 1 < items_.size() && items_[comma + 1].capitals && items_[begin].capitals &&
         at_[comma + 1] == nullptr;
}

// Whether item `at` is a bracket of the name, as in "HARBOUR DIM SUM (TST) was".
bool NameExtent::isBracketed(std::size_t at, std::size_t begin) const {
  constexpr std::size_t width = 2;
  std::size_t open = at;
  if (isMark(items_[at], ")") && at >= begin + width) open = at - width;
  if (open + width >= items_.size()) return false;
  constexpr auto channels = std::to_array<std::string_view>(
      {"bacs", "chaps", "fps", "neft", "imps", "rtgs", "upi", "sepa", "ach"});
  const bool channel =
      std::ranges::find(channels, items_[open + 1].text) != channels.end();  // "FERN LTD (BACS)"
  return !channel && isMark(items_[open], "(") && items_[begin].capitals &&
         items_[open + 1].capitals && isMark(items_[open + width], ")");
}

bool NameExtent::isNameWord(std::size_t at) const {
  return at_[at] == nullptr && beginsLikeAName(message_, at);
}

// Whether the point ends an initial: "MARIA L. SANTOS".
bool NameExtent::endsInitial(std::size_t point) const {
  return isInitial(items_[point - 1]) && point + 1 < items_.size() && isNameWord(point + 1);
}

// Whether item `at` is the "El", but not the "el", of "Panaderia El Trigal el 14/07".
bool NameExtent::isArticle(std::size_t at) const {
  constexpr std::size_t longest = 2;
  return items_[at].text.size() <= longest && at + 1 < items_.size() &&
         std::isupper(static_cast<unsigned char>(message_.text[items_[at].begin])) != 0 &&
         isNameWord(at + 1);
}

// Whether the name that begins at `begin` ends in front of item `at`, which is not a mark.
bool NameExtent::isBehindName(std::size_t at, std::size_t begin, Introduction introduced) const {
  const Item& item = items_[at];
  // Chinese writes no blanks between words.
  if (item.glued && item.kind == Item::Kind::word && !isUnspaced(item.text)) return false;
  if (introduced == Marker::info) {
    return isWordOf(at, {SumRole::balance, SumRole::limit}) || isWordOf(at, {Marker::footer}) ||
           (isWordOf(at, {Marker::ends}) && !item.capitals);
  }
  // "K-ELECTRIC Consumer# 12"
  if (at + 1 < items_.size() && items_[at + 1].glued && isMark(items_[at + 1], "#")) return true;
  // "NETFLIX COM", but not "LOJA SOL COM CARTAO"
  if (item.text == "com" && item.capitals && items_[begin].capitals &&
      !isWordOf(at + 1, {Marker::own})) {
    return false;
  }
  if (isArticle(at)) return false;
  if (isEastAsianMove(at)) return true;
  if (isWordOf(at, {Marker::ends, Marker::footer, Marker::own, SumRole::balance, SumRole::limit,
                    Marker::reference, Marker::from, Marker::to, Marker::towards, Marker::by,
                    Marker::info})) {
    return true;
  }
  // "من محمد عبد الرحمن لحسابك", "من رامي جابر الى حسابك"
  if (item.text.starts_with("لحساب") || (item.text == "الي" && at_[at] != nullptr)) return true;
  // In a name in capitals, words in capitals belong to it: "COUNCIL TAX".
  if (item.capitals && items_[begin].capitals) return false;
  return isWordOf(at, {Marker::at, SumRole::amount, SumRole::charge, Status::done, Move::credited,
                       Move::debited, Move::spent, Move::paid, Move::sent, Move::received,
                       Status::declined, Status::notYet, Move::refund, SumRole::aside});
}

bool NameExtent::endsName(std::size_t at, std::size_t begin, Introduction introduced) const {
  const Item& item = items_[at];
  if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak || item.startsSentence) {
    return true;
  }
  if (item.kind == Item::Kind::number) {
    const bool joined = isMark(items_[at - 1], "-./") && items_[at - 1].glued;  // "7-11"
    return item.isPiece ? !joined && !item.glued : item.text.size() > 4 && !item.glued;
  }
  if (isMark(item, ",")) return !continuesBehindComma(at, begin);
  if (item.text.starts_with("\xF0\x9F")) return true;  // an emoji
  if (isBracketed(at, begin)) return false;
  if (isMark(item, ";()[]|\"!?") || (isMark(item, "*") && !item.glued)) return true;
  if (isMark(item, ":") && !item.glued) return true;
  if (isMark(item, "-") && !item.glued && at + 1 < items_.size() && items_[at + 1].glued &&
      introduced != Marker::info) {
    return true;  // a signature: "-Orchid Bank"
  }
  if (isMark(item, ".")) {
    const bool title = items_[at - 1].text == "د" && at + 1 < items_.size() && items_[at + 1].named;
    if (title || endsInitial(at)) return false;
    const bool blankFollows = at + 1 >= items_.size() || !items_[at + 1].glued;
    return blankFollows && (!item.glued || item.begin - items_[begin].begin > 3);
  }
  return isBehindName(at, begin, introduced);
}

// "SEN COFFEE luc 21:15": behind a name in capitals, a small word of Latin letters is the
// message's.
bool NameExtent::followsCapitals(std::size_t at) const {
  const char first = message_.text[items_[at].begin];
  const bool last = at + 1 >= items_.size() || isMark(items_[at + 1], ".") ||
                    items_[at + 1].startsSentence;  // "Paolo Martini eseguito."
  return (items_[at - 1].capitals || last) && items_[at].kind == Item::Kind::word &&
         !items_[at].glued && first >= 'a' && first <= 'z';
}

bool NameExtent::isProse(Introduction introduced, std::size_t begin, std::size_t end) const {
  const std::string_view name = message_.text.substr(items_[begin].begin);
  const LetterCase first = names::caseOfFirst(name);
  const bool small = first == LetterCase::small;
  // Russian "в" is also in front of manners, "в приложении", and "Покупка" of goods, "товара". A
  // shop may be "at maple gas".
  const bool russian = small && !isAscii(name.front());
  if (russian && (!introduced || introduced == Marker::at)) return true;
  if (introduced != Marker::towards && introduced != Marker::by && introduced != Marker::to &&
      introduced != Marker::from && introduced != Marker::ends) {
    return false;
  }
  if (isAddress(items_[begin])) return false;
  const bool cased = items_[begin].kind != Item::Kind::word || first != LetterCase::none;
  // "on Nov 6"
  const bool day = begin + 1 < items_.size() && items_[begin + 1].isPiece;
  const bool month = begin + 2 < items_.size() && items_[begin + 2].isPiece;  // "for AUG-26"
  if (introduced == Marker::ends && day) return true;
  if (introduced == Marker::towards && (day || month)) return true;
  if (introduced == Marker::ends && (items_[begin].kind != Item::Kind::word || !cased)) return true;
  return small &&
         std::none_of(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                      items_.begin() + static_cast<std::ptrdiff_t>(end),
                      [](const Item& item) { return isAddress(item) || isMark(item, "._"); });
}

std::size_t NameExtent::endOfName(std::size_t begin, Introduction introduced) const {
  std::size_t end = begin + 1;
  if (isAddress(items_[begin])) return end;
  while (end < items_.size() && (items_[end].named || !endsName(end, begin, introduced))) {
    // "LE BISTRO in Paris"
    const bool town = items_[end].text == "in" && end + 1 < items_.size() && isNameWord(end + 1);
    if (items_[end - 1].named && !items_[end].named && (town || followsCapitals(end))) break;
    ++end;
  }
  return end;
}

}  // namespace kivo::recognition
