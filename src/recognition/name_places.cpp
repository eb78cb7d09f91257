#include "recognition/name_places.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string_view>

#include "recognition/movements.h"
#include "recognition/name_text.h"

namespace kivo::recognition {
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

class NamePlaces {
 public:
  explicit NamePlaces(const AnalysedMessage& message)
      : message_(message), items_(message.items), at_(items_.size() + 1, nullptr) {
    for (const Found& wording : message.wordings) at_[wording.begin] = &wording;
  }

  std::vector<NamePlace> all() {
    addQuotes();
    for (const Found& wording : message_.wordings) {
      if (wording.payeePrecedes) addInFront(wording);
      if (introduces(wording)) addBehind(wording);
    }
    std::ranges::sort(places_, {}, &NamePlace::begin);
    std::vector<NamePlace> apart;
    for (const NamePlace& place : places_) {
      if (apart.empty() || place.begin >= apart.back().lastEnd) apart.push_back(place);
    }
    return apart;
  }

 private:
  static bool introduces(const Found& wording) {
    const Marker* const marker = wording.as<Marker>();
    if (marker == nullptr) return wording.payeeFollows;
    return *marker == Marker::at || *marker == Marker::to || *marker == Marker::from ||
           *marker == Marker::label || *marker == Marker::by || *marker == Marker::towards ||
           (*marker == Marker::info && wording.payeeFollows);
  }

  [[nodiscard]] char firstByte(std::size_t at) const { return message_.text[items_[at].begin]; }
  [[nodiscard]] bool isWord(std::size_t at) const {
    return at < items_.size() && items_[at].kind == Item::Kind::word;
  }
  // A Latin word with a capital at its front.
  [[nodiscard]] bool isCapital(std::size_t at) const {
    return isWord(at) && std::isupper(static_cast<unsigned char>(firstByte(at))) != 0;
  }
  [[nodiscard]] bool isSmall(std::size_t at) const {
    return isWord(at) && std::islower(static_cast<unsigned char>(firstByte(at))) != 0;
  }

  void add(std::size_t begin, std::size_t end, std::size_t lastEnd) {
    if (begin < lastEnd) places_.push_back({begin, end, lastEnd});
  }

  // Between quotes on one line.
  void addQuotes() {
    constexpr std::size_t longest = 14;
    std::optional<std::size_t> open;
    for (std::size_t at = 0; at < items_.size(); ++at) {
      const std::string& text = items_[at].text;
      const bool quote = text == "\"" || text == "“" || text == "”" || text == "«" || text == "»";
      if (items_[at].kind == Item::Kind::lineBreak || (open && at - *open > longest)) open.reset();
      if (items_[at].kind != Item::Kind::mark || !quote) continue;
      if (open) add(*open + 1, at, at);
      if (open) {
        open.reset();
      } else {
        open = at;
      }
    }
  }

  // "Refund Fashion sent you #": the capitals in front.
  void addInFront(const Found& wording) {
    std::size_t begin = wording.begin;
    while (begin > 0 && !items_[begin].startsSentence &&
           (isCapital(begin - 1) || isMark(items_[begin - 1], "&'-.")) &&
           (at_[begin - 1] == nullptr || !at_[begin - 1]->is(Marker::own))) {
      --begin;
    }
    while (begin < wording.begin && !isCapital(begin)) ++begin;
    if (begin < wording.begin && !isPronoun(items_[begin].text)) {
      add(begin, wording.begin, wording.begin);
    }
  }

  void addBehind(const Found& wording) {
    std::size_t begin = wording.end;
    bool colon = begin > 0 && isMark(items_[begin - 1], ":");
    while (begin < items_.size() && isMark(items_[begin], ":-*")) {
      colon = colon || isMark(items_[begin], ":");
      ++begin;
    }
    if (begin >= items_.size()) return;
    if (at_[begin] != nullptr && at_[begin]->is(Marker::label)) begin = at_[begin]->end;
    if (begin >= items_.size() || (at_[begin] != nullptr && at_[begin]->is(Move::machine))) return;
    const bool small = isSmall(wording.begin);
    if (isCapital(begin) && (small || colon)) {
      addCapitals(begin);
    } else if (items_[begin].kind == Item::Kind::sum || items_[begin].kind == Item::Kind::number) {
      addNumberInFront(wording, begin);
    } else if (isWord(begin) && !isSmall(begin)) {
      addFirstWording(wording, begin);
    }
  }

  // Whether item `at` begins a label of a number or sum, "Avl Bal 500.00", "Card ending 1234", or
  // another part of the message.
  [[nodiscard]] bool isLabel(std::size_t at) const {
    const Found* const wording = at_[at];
    if (wording == nullptr) return false;
    const bool own = wording->is(Marker::own);
    const bool colon = isMark(items_[wording->end - 1], ":") ||
                       (wording->end < items_.size() && isMark(items_[wording->end], ":"));
    if (colon) return true;
    if (wording->as<Marker>() == nullptr && wording->as<SumRole>() == nullptr &&
        !wording->is(Move::fee)) {
      return false;
    }
    std::size_t next = wording->end;
    while (next < items_.size() &&
           (isMark(items_[next], ":.-#*()") || isOneOf(items_[next].text, labelTails) ||
            (at_[next] != nullptr && at_[next]->as<SumRole>() != nullptr &&
             !isMark(items_[next], ":")))) {
      next = std::max(next + 1, at_[next] == nullptr ? 0 : at_[next]->end);
    }
    if (next >= items_.size()) return true;
    const Item& item = items_[next];
    if (item.kind == Item::Kind::number || item.kind == Item::Kind::sum) return true;
    if (item.kind == Item::Kind::mark && item.text.size() > 1) return true;  // "••••1234"
    if (wording->is(Marker::ends) || wording->is(Marker::reference)) return true;
    return own && !(isCapital(next) && at_[next] == nullptr);
  }

  // The end of the capitalised words from `begin` on.
  [[nodiscard]] std::size_t endOfCapitals(std::size_t begin) const {
    std::size_t end = begin;
    for (std::size_t at = begin; at < items_.size(); ++at) {
      const Item& item = items_[at];
      if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak) break;
      if (at > begin && item.startsSentence) break;
      if (item.kind == Item::Kind::number) {
        if (!item.glued && !isCapital(at + 1)) break;
        end = at + 1;
      } else if (at_[at] != nullptr && at_[at]->is(Marker::ends) &&
                 (item.glued || item.kind == Item::Kind::mark)) {
        break;  // "Kahve 'nda"
      } else if (item.kind == Item::Kind::mark) {
        const bool inside = item.glued && at + 1 < items_.size() && items_[at + 1].glued;
        if (!isMark(item, "&'") && !(isMark(item, "-./+*@_") && inside)) break;
      } else if (isCapital(at)) {
        if (isLabel(at)) break;
        end = at + 1;
      } else if (item.glued) {
        end = at + 1;
      } else if (!(isOneOf(item.text, links) && isCapital(at + 1))) {
        break;
      }
    }
    return end;
  }

  // Whether item `at` is a word such as "card" or "payment", which the capitals before it describe.
  [[nodiscard]] bool isNoun(std::size_t at) const {
    if (at_[at] == nullptr) return false;
    const Move* const move = at_[at]->as<Move>();
    return at_[at]->is(Marker::own) ||
           (move != nullptr && movementOf(*move).strength == Strength::noun);
  }

  void addCapitals(std::size_t begin) {
    const std::size_t end = endOfCapitals(begin);
    const bool initial = items_[begin].end - items_[begin].begin == 1;  // "A new store"
    if (end == begin + 1 && (initial || isPronoun(items_[begin].text))) return;
    if (isSmall(end) && isNoun(end)) return;  // "for BillPay payment", "from Lotus Bank card 12"
    std::size_t first = end;
    // "at Fern Cafe Declined.": a shop or an outcome.
    while (first > begin + 1 && at_[first - 1] != nullptr &&
           at_[first - 1]->as<Status>() != nullptr && !isSmall(end)) {
      --first;
    }
    const bool done = first < end && at_[first]->is(Status::done);
    add(begin, first, done ? first : end);
  }

  // "at 5 Dollar Bakery", "at 7-Eleven", "from EGP 9000.00. Fee: EGP 1.00 credited to you"
  void addNumberInFront(const Found& wording, std::size_t begin) {
    const bool sum = items_[begin].kind == Item::Kind::sum;
    if (sum && wording.as<Marker>() == nullptr) return;  // "Pagamento de R$ 45,00 LUZ AZUL"
    std::size_t next = begin + 1;
    while (next < items_.size() && isMark(items_[next], "-'") && items_[next].glued) ++next;
    constexpr std::size_t longest = 5;
    const bool day = items_[begin].isPiece && next == begin + 1;  // "31 Aug"
    if (isCapital(next) && !day && !isLabel(next) &&
        (sum || items_[begin].text.size() <= longest)) {
      const std::size_t end = endOfCapitals(next);
      add(begin, end, end);
    } else if (sum && items_[wording.begin].text == "from" && isSmall(wording.begin)) {
      add(begin, begin, begin + 1);  // a sum where a name is expected
    }
  }

  // Without small letters around it, only the first wording of a name can be told: "AT DENIED
  // JEANS".
  void addFirstWording(const Found& introduction, std::size_t begin) {
    const Found* const first = at_[begin];
    if (first == nullptr || first->end >= items_.size()) return;
    const bool shop = introduction.is(Marker::at) || introduction.is(Marker::label);
    const bool masks = first->as<Status>() != nullptr ||
                       (first->as<Move>() != nullptr && shop && !first->is(Move::machine));
    const bool goesOn =
        isWord(first->end) && at_[first->end] == nullptr && !items_[first->end].startsSentence;
    if (masks && goesOn) add(begin, first->end, first->end);
  }

  const AnalysedMessage& message_;
  const Items& items_;
  std::vector<const Found*> at_;  // for each item, the wording that begins there, or null
  std::vector<NamePlace> places_;
};

}  // namespace

std::vector<NamePlace> namePlaces(const AnalysedMessage& message) {
  return NamePlaces(message).all();
}

Items withNames(Items items, const std::vector<NamePlace>& places, NameEnd counts) {
  for (const NamePlace& place : places) {
    const std::size_t end = counts == NameEnd::first ? place.end : place.lastEnd;
    for (std::size_t at = place.begin; at < end; ++at) {
      Item& item = items[at];
      item.named = true;
      if (at > place.begin) item.startsSentence = false;
      if (item.kind != Item::Kind::sum) continue;
      item.kind = Item::Kind::word;
      item.sum = {};
    }
  }
  return items;
}

}  // namespace kivo::recognition
