#include "recognition/name_places.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "names/letter_case.h"
#include "recognition/movements.h"
#include "recognition/name_text.h"
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

class NamePlaces {
 public:
  explicit NamePlaces(const AnalysedMessage& message)
      : message_(message), items_(message.items), at_(items_.size() + 1, nullptr) {
    for (const Found& wording : message.wordings) at_[wording.begin] = &wording;
  }

  std::vector<NamePlace> all() {
    addQuotes();
    for (const Found& wording : message_.wordings) {
      if (namesItsSubject(wording)) addInFront(wording);
      if (isFreeText(wording)) addFreeText(wording);
      if (introduces(wording)) addBehind(wording);
    }
    addFields();
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
  static bool introduces(const Found& wording) {
    const Marker* const marker = wording.as<Marker>();
    if (marker == nullptr) return wording.payeeFollows;
    return *marker == Marker::at || *marker == Marker::to || *marker == Marker::from ||
           *marker == Marker::label || *marker == Marker::by || *marker == Marker::towards ||
           (*marker == Marker::info && wording.payeeFollows);
  }

  // Whether the party of the payment is in front of `wording`: "Will Smith sent you".
  static bool namesItsSubject(const Found& wording) {
    return wording.payeePrecedes || wording.is(Move::credited) || wording.is(Move::sent) ||
           wording.is(Move::paid);
  }

  // Whether a text that the payer wrote follows: "Remarks: ...".
  [[nodiscard]] bool isFreeText(const Found& wording) const {
    return wording.is(Marker::info) || wording.is(Marker::reference);
  }

  [[nodiscard]] LetterCase caseOf(std::size_t at) const {
    return names::caseOfFirst(message_.text.substr(items_[at].begin));
  }
  [[nodiscard]] bool isWord(std::size_t at) const {
    return at < items_.size() && items_[at].kind == Item::Kind::word;
  }
  // A word with a capital at its front.
  [[nodiscard]] bool isCapital(std::size_t at) const {
    return isWord(at) && caseOf(at) == LetterCase::capital;
  }
  [[nodiscard]] bool isSmall(std::size_t at) const {
    return isWord(at) && caseOf(at) == LetterCase::small;
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
      const bool single = text == "'" && (open ? items_[at].glued : !items_[at].glued);
      const bool quote =
          single || text == "\"" || text == "“" || text == "”" || text == "«" || text == "»";
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

  // "Refund Fashion sent you #", "debited; Denied Jeans credited": the capitals in front.
  void addInFront(const Found& wording) {
    std::size_t end = wording.begin;
    while (end > 0 && (items_[end - 1].text == "has" || items_[end - 1].text == "was")) --end;
    std::size_t begin = end;
    while (begin > 0 && !items_[begin].startsSentence &&
           (isCapital(begin - 1) || isMark(items_[begin - 1], "&'-.")) &&
           (at_[begin - 1] == nullptr || !at_[begin - 1]->is(Marker::own) ||
            (isSmall(wording.begin) && wording.as<Move>() != nullptr &&
             items_[begin - 1].text == "card" && items_[begin - 1].startsSentence && begin < end &&
             !isInWording(begin)))) {
      --begin;
    }
    while (begin < end && !isCapital(begin)) ++begin;
    if (wording.payeePrecedes && wording.is(Move::received) && addSubjectWithSum(end)) return;
    if (begin == end || isPronoun(items_[begin].text) || !isSmall(wording.begin)) return;
    const bool apart = items_[begin].startsSentence || isMark(items_[begin - 1], ";,:");
    if (wording.payeePrecedes || (apart && hasOwnWord(begin, end))) add(begin, end, end);
  }

  // "Salary INR 85,000 Paid has sent you Rs 1.00": all of the sentence in front, when it holds a
  // sum and the amount follows.
  bool addSubjectWithSum(std::size_t end) {
    constexpr std::size_t near = 6;
    std::size_t begin = end;
    bool sum = false;
    while (begin > 0 && !(begin < end && items_[begin].startsSentence) &&
           !isMark(items_[begin - 1], ":")) {
      --begin;
      sum = sum || items_[begin].kind == Item::Kind::sum;
    }
    const auto behind = std::span(items_).subspan(end).first(std::min(near, items_.size() - end));
    const bool follows =
        std::ranges::any_of(behind, [](const Item& item) { return item.kind == Item::Kind::sum; });
    if (sum && follows) add(begin, end, end);
    return sum && follows;
  }

  // Whether one of the items is a capitalised word outside of all wordings.
  [[nodiscard]] bool hasOwnWord(std::size_t begin, std::size_t end) const {
    for (std::size_t at = begin; at < end; ++at) {
      if (isCapital(at) && !isInWording(at)) return true;
    }
    return false;
  }

  [[nodiscard]] bool isInWording(std::size_t at) const {
    const auto behind = std::ranges::upper_bound(message_.wordings, at, {}, &Found::begin);
    return behind != message_.wordings.begin() && std::prev(behind)->end > at;
  }

  // Whether a wording outside of the items tells of a movement.
  [[nodiscard]] bool movesOutside(std::size_t begin, std::size_t end) const {
    return std::ranges::any_of(message_.wordings, [&](const Found& wording) {
      return wording.as<Move>() != nullptr && (wording.end <= begin || wording.begin >= end);
    });
  }

  // The sums, outcomes and verbs of a text that the payer wrote, up to the end of its sentence.
  void addFreeText(const Found& wording) {
    std::size_t at = wording.end;
    while (at < items_.size() && isMark(items_[at], ":.-")) ++at;
    const bool reference = wording.is(Marker::reference);
    if (reference && (at >= items_.size() || items_[at].kind == Item::Kind::number)) return;
    const bool code = reference && isWord(at) && at + 1 < items_.size() && items_[at + 1].glued;
    if (code) return;
    for (const std::size_t begin = at; at < items_.size(); ++at) {
      if (items_[at].kind == Item::Kind::lineBreak) return;
      if (at > begin && (items_[at].startsSentence || endsFreeText(at))) return;
      if (items_[at].kind == Item::Kind::sum && isSumBefore(begin)) add(at, at + 1, at + 1);
      if (at_[at] == nullptr) continue;
      const Move* const move = at_[at]->as<Move>();
      const bool verb = move != nullptr && movementOf(*move).strength >= Strength::verb;
      // Only the text of the payer tells the direction, and holds a sum: both readings count.
      if (move != nullptr && hasSumBehind(begin) && !movesOutside(begin, items_.size())) {
        add(at, at, at_[at]->end);
      }
      if ((verb || at_[at]->as<Status>() != nullptr) && movesOutside(at, at_[at]->end)) {
        add(at, at_[at]->end, at_[at]->end);
      }
    }
  }

  // Whether a sum is in the rest of the sentence, and one before it.
  [[nodiscard]] bool hasSumBehind(std::size_t begin) const {
    if (!isSumBefore(begin)) return false;
    for (std::size_t at = begin; at < items_.size(); ++at) {
      if (at > begin && (items_[at].startsSentence || endsFreeText(at))) return false;
      if (items_[at].kind == Item::Kind::sum) return true;
    }
    return false;
  }

  [[nodiscard]] bool endsFreeText(std::size_t at) const {
    return at_[at] != nullptr && isLabel(at) &&
           (at_[at]->is(SumRole::balance) || at_[at]->is(SumRole::limit) ||
            at_[at]->is(Marker::reference));
  }

  [[nodiscard]] bool isSumBefore(std::size_t end) const {
    return std::any_of(items_.begin(), items_.begin() + static_cast<std::ptrdiff_t>(end),
                       [](const Item& item) { return item.kind == Item::Kind::sum; });
  }

  // Fields of capitalised words: "AED 415.00 - Available Light Photo - 12/11", "Salary Street" on
  // a line, "Insufficient Funs Comedy Club: GBP 16.00".
  void addFields() {
    for (std::size_t begin = 0; begin < items_.size(); ++begin) {
      const bool number = items_[begin].kind == Item::Kind::number && !items_[begin].isPiece;
      if (!isCapital(begin) && !(number && isCapital(begin + 1))) continue;
      const Found* const first = at_[begin];  // "To FAHAD OMAR", "TRF TO FATIMA BELLO"
      if (first != nullptr && (first->as<Marker>() != nullptr ||
                               (first->as<Move>() != nullptr && first->end > begin + 1))) {
        continue;
      }
      const bool front = begin == 0 || items_[begin].startsSentence;
      if (!front && !isMark(items_[begin - 1], ",;|:") && !isDash(begin - 1) &&
          items_[begin - 1].text != "·" && items_[begin - 1].kind != Item::Kind::sum) {
        continue;
      }
      const std::size_t end = endOfCapitals(number ? begin + 1 : begin);
      if (end <= begin + 1 || !endsField(end, front) || !hasOwnWord(begin, end)) continue;
      if (holdsOutcome(end - 1) || isHeading(begin, end) || !movesOutside(begin, end)) continue;
      add(begin, end, end);
      begin = end - 1;
    }
  }

  // "Debit Alert", "Heron Bank Card"
  [[nodiscard]] bool isHeading(std::size_t begin, std::size_t end) const {
    constexpr auto words = std::to_array<std::string_view>(
        {"alert", "notice", "notification", "bank", "card", "account", "transaction", "transfer",
         "payment", "purchase"});
    for (std::size_t at = begin; at < end; ++at) {
      if (isOneOf(items_[at].text, words)) return true;
    }
    return false;
  }

  [[nodiscard]] bool isDash(std::size_t at) const {
    return isMark(items_[at], "-") && !items_[at].glued;
  }

  [[nodiscard]] bool endsField(std::size_t end, bool front) const {
    if (end >= items_.size()) return false;  // a signature
    const Item& item = items_[end];
    if (front && isMark(item, ":")) {
      std::size_t next = end + 1;
      while (next < items_.size() && isMark(items_[next], "+-")) ++next;
      return next < items_.size() && items_[next].kind == Item::Kind::sum;
    }
    if (item.kind == Item::Kind::lineBreak) return end > 0;
    return !front && (item.kind == Item::Kind::sum || item.kind == Item::Kind::number ||
                      isMark(item, ",;|") || item.text == "·" || isDash(end));
  }

  [[nodiscard]] bool holdsOutcome(std::size_t at) const {
    return at_[at] != nullptr && (at_[at]->is(Status::declined) || at_[at]->is(Status::done) ||
                                  at_[at]->is(Status::notDone));
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
    if (items_[begin].text.find_first_not_of('x') == std::string::npos) return;  // "XX7719"
    const bool caps = caseOf(wording.begin) == LetterCase::capital &&
                      caseOf(wording.end - 1) == LetterCase::capital;
    const bool small = !caps;
    if (colon && items_[wording.begin].startsSentence && addLine(begin)) return;
    if (wording.is(Marker::at) && isPronoun(items_[begin].text)) {
      addClause(begin);
    } else if (isCapital(begin) && (small || colon)) {
      addCapitals(begin);
    } else if (items_[begin].kind == Item::Kind::sum || items_[begin].kind == Item::Kind::number) {
      addNumberInFront(wording, begin);
    } else if (isWord(begin) && !isSmall(begin)) {
      addFirstWording(wording, begin);
      addDefinite(begin);
    }
  }

  // Whether item `at` begins "your account", "A/c XX12" or the like.
  [[nodiscard]] bool isOwnAccount(std::size_t at) const {
    if (at_[at] == nullptr || !at_[at]->is(Marker::own)) return false;
    std::size_t next = at_[at]->end;
    while (next < items_.size() &&
           (isMark(items_[next], ":.-#*()") || isOneOf(items_[next].text, labelTails))) {
      ++next;
    }
    if (next >= items_.size() || !isWord(next)) return true;
    return at_[next] != nullptr && at_[next]->is(Marker::own);
  }

  // The rest of the line, "To: Your txn declined", unless it names the person's own account. False
  // when it does or when the line does not end.
  bool addLine(std::size_t begin) {
    std::size_t end = begin;
    bool words = false;
    for (; end < items_.size() && items_[end].kind != Item::Kind::lineBreak; ++end) {
      if (isOwnAccount(end)) return false;
      const bool outcome = at_[end] != nullptr &&
                           (at_[end]->as<Status>() != nullptr || at_[end]->as<Move>() != nullptr);
      words = words || outcome || (isWord(end) && !isInWording(end));
    }
    if (end >= items_.size() || !words) return false;
    add(begin, end, end);
    return true;
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
    if (wording->end < items_.size() && isMark(items_[wording->end], "&")) return false;
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
    if (wording->is(Marker::ends) || wording->is(Marker::footer) || wording->is(Marker::reference))
      return true;
    return own && !(isCapital(next) && at_[next] == nullptr);
  }

  // "ZARA NOT approved"
  [[nodiscard]] bool goesOnSmall(std::size_t at) const {
    return at_[at] != nullptr && at_[at]->as<Status>() != nullptr && isSmall(at_[at]->end - 1);
  }

  // "TRF FRM FERN VENTURES TO MONA"
  [[nodiscard]] bool isPrepositionInCapitals(std::size_t at) const {
    const Marker* const marker = at_[at] == nullptr ? nullptr : at_[at]->as<Marker>();
    return items_[at].capitals && marker != nullptr &&
           (*marker == Marker::to || *marker == Marker::from);
  }

  // The end of the capitalised words from `begin` on.
  [[nodiscard]] std::size_t endOfCapitals(std::size_t begin) const {
    std::size_t end = begin;
    for (std::size_t at = begin; at < items_.size(); ++at) {
      const Item& item = items_[at];
      if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak) break;
      if (at > begin && item.startsSentence) break;
      if (item.kind == Item::Kind::number) {
        constexpr std::size_t longest = 4;
        const bool inside = isCapital(at + 1) && !isMonth(items_, at + 1) &&
                            !items_[at + 1].glued && item.text.size() <= longest;
        if (!item.glued && !inside) break;
        end = at + 1;
      } else if (at_[at] != nullptr && at_[at]->is(Marker::ends) &&
                 (item.glued || item.kind == Item::Kind::mark)) {
        break;  // "Kahve 'nda"
      } else if (item.kind == Item::Kind::mark) {
        const bool inside = item.glued && at + 1 < items_.size() && items_[at + 1].glued;
        const bool prefix = isMark(item, "*") && isCapital(at + 1) && items_[at + 1].glued;
        if (!isMark(item, "&'") && !prefix && !(isMark(item, "-./+*@_") && inside)) break;
      } else if (isCapital(at)) {
        const bool first = at == begin && at_[at] != nullptr &&
                           (at_[at]->is(Marker::ends) || at_[at]->is(Marker::footer));
        if (!(first && isCapital(at_[at]->end)) && isLabel(at)) break;
        if (at > begin && (goesOnSmall(at) || isPrepositionInCapitals(at))) break;
        end = at + 1;
      } else if (item.glued) {
        end = at + 1;
      } else if (!(isOneOf(item.text, links) && isCapital(at + 1))) {
        break;
      }
    }
    return end;
  }

  // Whether item `at` is a sum, and one in the same currency is before it in its sentence: the
  // amount was stated, so this one belongs to the name.
  [[nodiscard]] bool repeatsCurrency(std::size_t at) const {
    if (items_[at].kind != Item::Kind::sum) return false;
    for (std::size_t before = at; before > 0 && !items_[before].startsSentence; --before) {
      const Item& item = items_[before - 1];
      if (item.kind != Item::Kind::sum) continue;
      const std::string& currency = items_[at].sum.currency;
      return currency.empty() || item.sum.currency == currency;
    }
    return false;
  }

  // Whether item `at` is a word such as "card" or "payment", which the capitals before it describe.
  [[nodiscard]] bool isNoun(std::size_t at) const {
    if (at_[at] == nullptr) return false;
    const Move* const move = at_[at]->as<Move>();
    return at_[at]->is(Marker::own) ||
           (move != nullptr && movementOf(*move).strength == Strength::noun);
  }

  void addCapitals(std::size_t begin) {
    std::size_t end = endOfCapitals(begin);
    if (end < items_.size() && repeatsCurrency(end)) {  // "Declined $0.00 Inc"
      ++end;
      if (isCapital(end) && !isLabel(end)) end = endOfCapitals(end);
    }
    const bool date = end <= begin + 3 && items_[end - 1].isPiece;              // "AUG-26"
    const bool initial = date || items_[begin].end - items_[begin].begin == 1;  // "A new store"
    if ((end == begin + 1 || date) && (initial || isPronoun(items_[begin].text))) return;
    if (isSmall(end) && isNoun(end)) return;  // "for BillPay payment", "from Lotus Bank card 12"
    std::size_t first = end;
    // "at Fern Cafe Declined.": a shop or an outcome.
    while (first > begin + 1 && holdsOutcome(first - 1) && !isSmall(end)) {
      --first;
    }
    const bool done = first < end && at_[first]->is(Status::done);
    add(begin, first, done ? first : end);
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

  // "مقهى المرفوض": behind an Arabic noun a word with the article belongs to the name.
  void addDefinite(std::size_t begin) {
    constexpr std::string_view article = "ال";
    const std::size_t next = begin + 1;
    if (next >= items_.size() || isInWording(begin) || items_[begin].text.starts_with(article))
      return;
    if (!isWord(next) || items_[next].startsSentence || at_[next] == nullptr) return;
    const std::string_view word = items_[next].text;
    if (word.starts_with(article) && at_[next]->end == next + 1 && !isLabel(next)) {
      add(next, next + 1, next + 1);
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
