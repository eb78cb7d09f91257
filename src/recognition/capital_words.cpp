#include "recognition/capital_words.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "recognition/movements.h"
#include "recognition/number_pieces.h"

namespace kivo::recognition {

using names::LetterCase;

namespace {

// Small words within a name: "Bread & Co of Cairo", "Panaderia de la Plaza".
constexpr auto links = std::to_array<std::string_view>(
    {"of", "and", "the", "n",  "de",  "la", "du",  "del", "da",  "do", "dos", "das",
     "y",  "e",   "di",  "le", "les", "et", "von", "van", "bin", "al", "el",  "des"});

// Words between a label and its number: "Ref no. 12", "card ending in 1234".
constexpr auto labelTails = std::to_array<std::string_view>(
    {"no", "number", "ending", "in", "with", "is", "of", "id", "x", "xx", "xxx", "xxxx", "was"});

bool isOneOf(std::string_view word, auto words) {
  return std::ranges::find(words, word) != words.end();
}

}  // namespace

CapitalWords::CapitalWords(const AnalysedMessage& message)
    : message_(message), items_(message.items), at_(items_.size() + 1, nullptr) {
  for (const Found& wording : message.wordings) at_[wording.begin] = &wording;
}

LetterCase CapitalWords::caseOf(std::size_t at) const {
  return names::caseOfFirst(message_.text.substr(items_[at].begin));
}

bool CapitalWords::isWord(std::size_t at) const {
  return at < items_.size() && items_[at].kind == Item::Kind::word;
}

bool CapitalWords::isCapital(std::size_t at) const {
  return isWord(at) && caseOf(at) == LetterCase::capital;
}

bool CapitalWords::isSmall(std::size_t at) const {
  return isWord(at) && caseOf(at) == LetterCase::small;
}

bool CapitalWords::isInWording(std::size_t at) const {
  const auto behind = std::ranges::upper_bound(message_.wordings, at, {}, &Found::begin);
  return behind != message_.wordings.begin() && std::prev(behind)->end > at;
}

bool CapitalWords::hasOwnWord(std::size_t begin, std::size_t end) const {
  for (std::size_t at = begin; at < end; ++at) {
    if (isCapital(at) && !isInWording(at)) return true;
  }
  return false;
}

bool CapitalWords::isDash(std::size_t at) const {
  return isMark(items_[at], "-") && !items_[at].glued;
}

bool CapitalWords::isNoun(std::size_t at) const {
  if (at_[at] == nullptr) return false;
  const Move* const move = at_[at]->as<Move>();
  return at_[at]->is(Marker::own) ||
         (move != nullptr && movementOf(*move).strength == Strength::noun);
}

bool CapitalWords::isOutcome(std::size_t at) const {
  return at_[at] != nullptr && (at_[at]->is(Status::declined) || at_[at]->is(Status::done) ||
                                at_[at]->is(Status::notDone));
}

bool CapitalWords::isOwnAccount(std::size_t at) const {
  if (at_[at] == nullptr || !at_[at]->is(Marker::own)) return false;
  std::size_t next = at_[at]->end;
  while (next < items_.size() &&
         (isMark(items_[next], ":.-#*()") || isOneOf(items_[next].text, labelTails))) {
    ++next;
  }
  if (next >= items_.size() || !isWord(next)) return true;
  return at_[next] != nullptr && at_[next]->is(Marker::own);
}

// Whether the number at `next` does not belong to the wording at `at`: "QUAN SO DU 3 MIEN", "مطعم
// الرصيد 12/11".
bool CapitalWords::namesItsNumber(std::size_t at, std::size_t next) const {
  constexpr std::size_t longest = 2;
  const Item& item = items_[next];
  const bool role = at_[at]->as<SumRole>() != nullptr;
  const bool small = item.kind == Item::Kind::number && item.text.size() <= longest;
  if (small && role && items_[at].capitals && isCapital(next + 1) && items_[next + 1].capitals &&
      at_[next + 1] == nullptr && !isMonth(items_, next + 1)) {
    return true;
  }
  const bool latin = static_cast<unsigned char>(items_[at].text.front()) < 0x80;
  return item.isPiece && (role || at_[at]->is(Marker::own)) && !latin && next + 1 < items_.size() &&
         isMark(items_[next + 1], "/-") && items_[next + 1].glued;
}

bool CapitalWords::isLabel(std::size_t at) const {
  const Found* const wording = at_[at];
  if (wording == nullptr) return false;
  const bool own = wording->is(Marker::own);
  const bool latin = static_cast<unsigned char>(items_[at].text.front()) < 0x80;
  const bool colon = isMark(items_[wording->end - 1], ":") ||
                     (wording->end < items_.size() && isMark(items_[wording->end], ":"));
  if (colon) return true;
  if (wording->end < items_.size() && isMark(items_[wording->end], "&")) return false;
  if (wording->as<Marker>() == nullptr && wording->as<SumRole>() == nullptr &&
      !wording->is(Move::fee)) {
    return false;
  }
  std::size_t next = wording->end;
  while (next < items_.size() &&
         (isMark(items_[next], ":.-#*()") || isOneOf(items_[next].text, labelTails) ||
          (at_[next] != nullptr && at_[next]->as<SumRole>() != nullptr &&
           !isMark(items_[next], ":") && (latin || !at_[next]->is(SumRole::amount))))) {
    next = std::max(next + 1, at_[next] == nullptr ? 0 : at_[next]->end);
  }
  if (next >= items_.size()) return true;
  const Item& item = items_[next];
  if (namesItsNumber(at, next)) return false;
  if (item.kind == Item::Kind::number || item.kind == Item::Kind::sum) return true;
  if (item.kind == Item::Kind::mark && item.text.size() > 1) return true;  // "••••1234"
  // "Due Date Fruits", "STOP AND SHOP"
  constexpr auto nouns = std::to_array<std::string_view>({"date", "now", "today", "dear", "and"});
  const bool noun = isOneOf(items_[at].text, nouns) && isCapital(next) && at_[next] == nullptr;
  if (wording->is(Marker::ends) && noun) return false;
  if (wording->is(Marker::ends) || wording->is(Marker::footer) || wording->is(Marker::reference))
    return true;
  return own && !(isCapital(next) && at_[next] == nullptr);
}

// "ZARA NOT approved"
bool CapitalWords::goesOnSmall(std::size_t at) const {
  return at_[at] != nullptr && at_[at]->as<Status>() != nullptr && isSmall(at_[at]->end - 1);
}

// "TRF FRM FERN VENTURES TO MONA"
bool CapitalWords::isPrepositionInCapitals(std::size_t at) const {
  const Marker* const marker = at_[at] == nullptr ? nullptr : at_[at]->as<Marker>();
  if (items_[at].text == "van") return false;  // "JAN VAN DIJK", "NGUYEN VAN AN"
  return items_[at].capitals && marker != nullptr &&
         (*marker == Marker::to || *marker == Marker::from);
}

// "LAST CALL PROMO BAR", "TACOS EL RECHAZADO": a label's word is part of a name when the words
// around it are written as it is.
bool CapitalWords::isAmongCapitals(std::size_t at, std::size_t begin) const {
  const Found& wording = *at_[at];
  const std::size_t next = wording.end;
  const bool word =
      wording.is(Marker::ends) || wording.is(Marker::footer) || wording.is(Marker::towards);
  if (!word || at == begin || !isCapital(begin)) return false;
  if (wording.is(Marker::ends) && items_[at].capitals && items_[at - 1].capitals &&
      items_[begin].capitals && isSmall(next) && at_[next] != nullptr &&
      at_[next]->is(Marker::own)) {
    return true;  // "GIVE AND GO ON card 12"
  }
  if (!isCapital(next)) return false;
  if (items_[next].startsSentence) return false;
  const bool alike = items_[at].capitals == items_[begin].capitals &&
                     items_[next].capitals == items_[begin].capitals;
  return alike && (at_[next] == nullptr || !(isLabel(next) || at_[next]->as<Marker>() != nullptr));
}

bool CapitalWords::continuesCapitals(std::size_t at, std::size_t begin) const {
  const Item& item = items_[at];
  const bool gluedBehind = at + 1 < items_.size() && items_[at + 1].glued;
  const Found* const wording = at_[at];
  if (item.kind == Item::Kind::number) {
    constexpr std::size_t longest = 4;
    return item.glued || (isCapital(at + 1) && !isMonth(items_, at + 1) && !gluedBehind &&
                          item.text.size() <= longest);
  }
  const bool mark = item.kind == Item::Kind::mark;
  if (wording != nullptr && wording->is(Marker::ends) && (item.glued || mark)) {
    return false;  // "Kahve 'nda"
  }
  if (mark) {
    const bool prefix = isMark(item, "*") && isCapital(at + 1) && gluedBehind;  // "BC *PINE"
    const bool initial = at > begin && isMark(item, ".") && isInitial(items_[at - 1]) &&
                         isCapital(at + 1) && !isLabel(at + 1);  // "NOEL V. CANCELADO"
    return isMark(item, "&'") || prefix || initial ||
           (isMark(item, "-./+*@_") && item.glued && gluedBehind);
  }
  if (!isCapital(at)) return item.glued || (isOneOf(item.text, links) && isCapital(at + 1));
  if (at > begin && gluedBehind && isMark(items_[at + 1], "#")) return false;  // "Consumer# 12"
  const bool opens = at == begin && wording != nullptr && isCapital(wording->end) &&
                     (wording->is(Marker::ends) || wording->is(Marker::footer) ||
                      wording->is(Marker::reference) || wording->is(SumRole::balance));
  if (!opens && isLabel(at) && !isAmongCapitals(at, begin)) return false;
  return at == begin || !(goesOnSmall(at) || isPrepositionInCapitals(at));
}

std::size_t CapitalWords::endOfCapitals(std::size_t begin) const {
  std::size_t end = begin;
  for (std::size_t at = begin; at < items_.size(); ++at) {
    const Item& item = items_[at];
    const bool apart = item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak ||
                       (at > begin && item.startsSentence);
    if (apart || !continuesCapitals(at, begin)) break;
    const bool link = item.kind == Item::Kind::mark || (!item.glued && isSmall(at));
    if (!link) end = at + 1;
  }
  return end;
}

bool CapitalWords::repeatsCurrency(std::size_t at) const {
  if (items_[at].kind != Item::Kind::sum) return false;
  for (std::size_t before = at; before > 0 && !items_[before].startsSentence; --before) {
    const Item& item = items_[before - 1];
    if (item.kind != Item::Kind::sum || item.sum.minorUnits == 0) continue;
    const std::string& currency = items_[at].sum.currency;
    return currency.empty() || item.sum.currency == currency;
  }
  return false;
}

}  // namespace kivo::recognition
