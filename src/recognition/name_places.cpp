#include "recognition/name_places.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "names/letter_case.h"
#include "recognition/capital_words.h"
#include "recognition/field_names.h"
#include "recognition/merchant_categories.h"
#include "recognition/movements.h"
#include "recognition/name_text.h"
#include "recognition/payer_text.h"
#include "recognition/subject_names.h"
#include "recognition/uncased_name.h"

namespace kivo::recognition {

using names::LetterCase;

namespace {

class NamePlaces {
 public:
  explicit NamePlaces(const AnalysedMessage& message)
      : message_(message), items_(message.items), words_(message) {}

  std::vector<NamePlace> all() {
    append(quotedNames(message_));
    const std::vector<NamePlace> subjects = subjectNames(message_, words_);
    append(subjects);
    auto subject = subjects.begin();
    const auto isSubject = [&](const Found& wording) {
      while (subject != subjects.end() && subject->end <= wording.begin) ++subject;
      return subject != subjects.end() && subject->begin <= wording.begin &&
             wording.end <= subject->end;
    };
    std::size_t payerTextEnd = 0;
    for (const Found& wording : message_.wordings) {
      if (isSubject(wording)) continue;
      if (introducesPayerText(message_, wording) && wording.begin >= payerTextEnd) {
        const PayerText text = payerTextBehind(message_, words_, wording);
        payerTextEnd = text.end;
        append(text.places);
      }
      if (introduces(wording) || isSlipOf(wording)) {
        addBehind(wording);
      } else {
        addBehindPreposition(wording);
      }
      if (isArabicIn(wording)) append(uncasedNameBehind(message_, words_, wording, wording.end));
    }
    append(fieldNames(message_, words_));
    append(bankNames(message_, words_));
    append(bracketedNames(message_, words_));
    // Of places that overlap, the first counts, and of those that begin together the longest.
    std::ranges::stable_sort(places_, [](const NamePlace& one, const NamePlace& other) {
      return one.begin != other.begin ? one.begin < other.begin : one.lastEnd > other.lastEnd;
    });
    std::vector<NamePlace> apart;
    for (const NamePlace& place : places_) {
      if (apart.empty() || place.begin >= apart.back().lastEnd) apart.push_back(place);
    }
    return apart;
  }

 private:
  [[nodiscard]] bool introduces(const Found& wording) const {
    const Marker* const marker = wording.as<Marker>();
    if (marker == nullptr) {
      return wording.payeeFollows || endsWithFrom(wording) || endsWithTo(wording);
    }
    return *marker == Marker::at || *marker == Marker::to || *marker == Marker::from ||
           *marker == Marker::label || *marker == Marker::by || *marker == Marker::towards ||
           ((*marker == Marker::info || *marker == Marker::own) && wording.payeeFollows);
  }

  // "Transfer from"
  [[nodiscard]] bool endsWithFrom(const Found& wording) const {
    return wording.end > wording.begin && items_[wording.end - 1].text == "from";
  }

  // "paid to"
  [[nodiscard]] bool endsWithTo(const Found& wording) const {
    return wording.end > wording.begin + 1 && wording.as<Move>() != nullptr &&
           items_[wording.end - 1].text == "to";
  }

  // "KD 11.250 PURCHASE MINIMUM DUE CAFE", "POS purchase PICK N PAY"
  [[nodiscard]] bool isSlipOf(const Found& wording) const {
    if (!wording.is(Move::purchase) || wording.begin == 0) return false;
    const Item& before = items_[wording.begin - 1];
    return before.text == "pos" ||
           (before.kind == Item::Kind::sum && items_[wording.begin].capitals);
  }

  [[nodiscard]] bool isMarker(std::size_t at) const {
    return words_.wordingAt(at) != nullptr && words_.wordingAt(at)->as<Marker>() != nullptr;
  }

  // "PURCHASE DECLINED CARD", "PURCHASE ZARA DECLINED CARD": an outcome is no part of the name.
  void addSlip(std::size_t begin) {
    if (!words_.isCapital(begin)) return;
    std::size_t end = words_.endOfCapitals(begin);
    while (end > begin && words_.isOutcome(end - 1)) --end;
    if (!words_.isOutcome(begin)) {
      add(begin, end, end);
    } else if (words_.hasOwnWord(begin, end) && !isMarker(words_.wordingAt(begin)->end)) {
      add(begin, begin, end);  // "PURCHASE DECLINED DINER CARD": a shop or an outcome
    }
  }

  // "في محلات القسط": "in" introduces a shop or, mostly, a date.
  [[nodiscard]] bool isArabicIn(const Found& wording) const {
    return wording.is(Marker::ends) && items_[wording.begin].text == "في" &&
           words_.isWord(wording.end) && isShopWord(items_[wording.end].text);
  }

  void append(const std::vector<NamePlace>& places) {
    places_.insert(places_.end(), places.begin(), places.end());
  }

  void add(std::size_t begin, std::size_t end, std::size_t lastEnd) {
    if (begin < lastEnd) places_.push_back({begin, end, lastEnd});
  }

  // "to Your Corner Shop", "at Block Party": a longer wording of a preposition and a capital.
  void addBehindPreposition(const Found& wording) {
    constexpr auto prepositions = std::to_array<std::string_view>({"to", "at", "from", "by"});
    if (wording.end < wording.begin + 2) return;
    const std::size_t begin = wording.end - 1;
    const bool your = items_[begin].text == "your";
    if ((begin != wording.begin + 1 && !your) || (wording.as<Move>() != nullptr && !your) ||
        std::ranges::find(prepositions, items_[begin - 1].text) == prepositions.end()) {
      return;
    }
    const bool apart = words_.isSmall(begin - 1) || items_[begin - 1].startsSentence;
    if (!apart || !words_.isCapital(begin) || !words_.isCapital(wording.end) ||
        words_.isLabel(wording.end) || words_.isNoun(wording.end)) {
      return;
    }
    const std::size_t end = words_.endOfCapitals(wording.end);
    const Found* const next = words_.wordingAt(wording.end);
    const bool shop = your && next != nullptr && next->as<Status>() != nullptr;
    if (shop || words_.hasOwnWord(wording.end, end)) add(begin, end, end);
  }

  void addBehind(const Found& wording) {
    std::size_t begin = wording.end;
    bool colon = begin > 0 && isMark(items_[begin - 1], ":");
    while (begin < items_.size() && isMark(items_[begin], ":-*")) {
      colon = colon || isMark(items_[begin], ":");
      ++begin;
    }
    if (begin >= items_.size()) return;
    if (words_.wordingAt(begin) != nullptr && words_.wordingAt(begin)->is(Marker::label))
      begin = words_.wordingAt(begin)->end;
    if (begin >= items_.size() ||
        (words_.wordingAt(begin) != nullptr && words_.wordingAt(begin)->is(Move::machine) &&
         !(wording.is(Marker::towards) && words_.isCapital(begin + 1) &&
           words_.wordingAt(begin + 1) == nullptr)))
      return;
    if (items_[begin].text.find_first_not_of('x') == std::string::npos) return;  // "XX7719"
    const bool small = !isInCapitals(wording);
    const bool label = colon || words_.caseOf(wording.begin) == LetterCase::none;
    if (label && items_[wording.begin].startsSentence && addLine(begin)) return;
    if (small && words_.caseOf(wording.begin) == LetterCase::capital && addTitled(wording, begin)) {
      return;
    }
    const bool greets = items_[begin].text == "dear" && words_.isCapital(begin + 1);
    if (wording.is(Marker::at) && isPronoun(items_[begin].text) && !greets) {
      addClause(begin);
    } else if (isSlipOf(wording)) {
      addSlip(begin);
    } else if (words_.isCapital(begin) && (small || colon)) {
      addCapitals(begin, wording.is(Marker::at));
    } else if (items_[begin].kind == Item::Kind::sum || items_[begin].kind == Item::Kind::number) {
      addNumberInFront(wording, begin);
    } else if (items_[wording.begin].text == "在") {
      addUnspaced(begin);
    } else if (words_.isWord(begin) && !words_.isSmall(begin)) {
      append(uncasedNameBehind(message_, words_, wording, begin));
    }
  }

  // "AT", "AS AT", but not the "At" of "Spent Rs 5 At Denied Jeans On 12/3".
  [[nodiscard]] bool isInCapitals(const Found& wording) const {
    return words_.caseOf(wording.begin) == LetterCase::capital && items_[wording.begin].capitals &&
           words_.caseOf(wording.end - 1) == LetterCase::capital;
  }

  // The rest of the line, "To: Your txn declined", unless it names the person's own account. False
  // when it does or when the line does not end.
  bool addLine(std::size_t begin) {
    std::size_t end = begin;
    bool words = false;
    bool told = false;  // of a sum or an outcome
    for (; end < items_.size() && items_[end].kind != Item::Kind::lineBreak; ++end) {
      if (words_.isOwnAccount(end) && !told) return false;
      const bool outcome =
          words_.wordingAt(end) != nullptr && (words_.wordingAt(end)->as<Status>() != nullptr ||
                                               words_.wordingAt(end)->as<Move>() != nullptr);
      told = told || outcome || items_[end].kind == Item::Kind::sum;
      words = words || outcome || (words_.isWord(end) && !words_.isInWording(end));
    }
    if (end >= items_.size() || !words) return false;
    add(begin, end, end);
    return true;
  }

  // "Spent Rs 5 At Refund Rs 5 credited On 12/3", "To Cashback Rs 5" on a line: in a message whose
  // small words have capitals, a name goes on to the next of them or to the end of its line.
  bool addTitled(const Found& wording, std::size_t begin) {
    constexpr std::size_t longest = 9;
    if (!words_.isCapital(begin)) return false;
    const bool line = wording.begin > 0 && items_[wording.begin].startsSentence &&
                      items_[wording.begin - 1].kind == Item::Kind::lineBreak;
    for (std::size_t end = begin + 1; end < items_.size() && end <= begin + longest; ++end) {
      const bool breaks = items_[end].kind == Item::Kind::lineBreak;
      const bool date = items_[end].text == "on" && words_.isCapital(end) &&
                        end + 1 < items_.size() && items_[end + 1].kind == Item::Kind::number;
      if (words_.isOutcome(end - 1)) return false;  // "At Fern Cafe Declined On 12/3"
      if (date || (breaks && line)) add(begin, end, end);
      if (date || breaks || words_.isOwnAccount(end)) return date || (breaks && line);
      if (items_[end].startsSentence) return false;
    }
    return false;
  }

  // "paid to FERN WATER acc 14220077812": the account of the other side.
  [[nodiscard]] bool isLongAccount(std::size_t at) const {
    constexpr std::size_t shortest = 8;
    const std::size_t number = words_.wordingAt(at)->end;
    return words_.wordingAt(at)->is(Marker::own) && number < items_.size() &&
           items_[number].kind == Item::Kind::number && !items_[number].isPiece &&
           items_[number].text.size() >= shortest;
  }

  void addCapitals(std::size_t begin, bool shop) {
    std::size_t end = words_.endOfCapitals(begin);
    // "Declined $0.00 Inc", "KIOSK 5 USD 7500 RETURNED"
    const bool number = end + 1 < items_.size() && items_[end].kind == Item::Kind::number &&
                        !items_[end].isPiece && words_.repeatsCurrency(end + 1);
    if (number) ++end;
    if (end < items_.size() && words_.repeatsCurrency(end)) {
      ++end;
      if (words_.isCapital(end) && !words_.isLabel(end)) end = words_.endOfCapitals(end);
    }
    const bool date = end <= begin + 3 && items_[end - 1].isPiece;              // "AUG-26"
    const bool initial = date || items_[begin].end - items_[begin].begin == 1;  // "A new store"
    if ((end == begin + 1 || date) && (initial || isPronoun(items_[begin].text))) return;
    if (!shop && words_.isSmall(end) && words_.isNoun(end) && !isLongAccount(end))
      return;  // "for BillPay payment", "from Lotus Bank card 12"
    std::size_t first = end;
    // "at Fern Cafe Declined.": a shop or an outcome.
    while (first > begin + 1 && words_.isOutcome(first - 1) && !words_.isSmall(end)) {
      --first;
    }
    const bool done = first < end && words_.wordingAt(first)->is(Status::done);
    add(begin, first, done ? first : end);
  }

  // "在余额面馆消费": up to the verb.
  void addUnspaced(std::size_t begin) {
    constexpr std::size_t longest = 16;
    for (std::size_t at = begin; at < items_.size() && at < begin + longest; ++at) {
      const Found* const wording = words_.wordingAt(at);
      const Move* const move = wording == nullptr ? nullptr : wording->as<Move>();
      const bool ends = move != nullptr &&
                        (*move == Move::spent || *move == Move::purchase || *move == Move::paid);
      if (ends && at > begin) add(begin, at, at);
      if (ends || !words_.isWord(at) || items_[at].startsSentence) return;
    }
  }

  // "at You received AED 640, DUBAI": up to the next mark.
  void addClause(std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < items_.size() && !items_[end].startsSentence && !isMark(items_[end], ",;.")) ++end;
    add(begin, end, end);
  }

  // "at 5 Dollar Bakery", "at 7-Eleven", "from EGP 9000.00. Fee: EGP 1.00 credited to you"
  void addNumberInFront(const Found& wording, std::size_t begin) {
    const bool sum = items_[begin].kind == Item::Kind::sum;
    const bool from = endsWithFrom(wording) && words_.isSmall(wording.end - 1);
    if (sum && !from && wording.as<Marker>() == nullptr)
      return;  // "Pagamento de R$ 45,00 LUZ AZUL"
    std::size_t next = begin + 1;
    while (next < items_.size() && isMark(items_[next], "-'%") && items_[next].glued) ++next;
    constexpr std::size_t longest = 5;
    const bool ordinal = words_.isCapital(next) && items_[next].glued && words_.isCapital(next + 1);
    const bool day = items_[begin].isPiece && next == begin + 1 && !ordinal;  // "31 Aug"
    if (words_.isCapital(next) && !day && !words_.isLabel(next) &&
        (sum || items_[begin].text.size() <= longest)) {
      const std::size_t end = words_.endOfCapitals(next);
      add(begin, end, end);
    } else if (sum && from) {
      add(begin, begin, begin + 1);  // a sum where a name is expected
    }
  }

  const AnalysedMessage& message_;
  const Items& items_;
  const CapitalWords words_;
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
