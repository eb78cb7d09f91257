#include "recognition/field_names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "recognition/number_pieces.h"

namespace kivo::recognition {
namespace {

class FieldNames {
 public:
  FieldNames(const AnalysedMessage& message, const CapitalWords& words)
      : items_(message.items), words_(words) {
    for (const Found& wording : message.wordings) {
      if (wording.as<Move>() == nullptr) continue;
      if (firstMove_ == nullptr) firstMove_ = &wording;
      lastMove_ = &wording;
    }
    const auto sum = std::ranges::find(items_, Item::Kind::sum, &Item::kind);
    firstSum_ = static_cast<std::size_t>(sum - items_.begin());
  }

  // Fields of capitalised words: "AED 415.00 - Available Light Photo - 12/11", "Salary Street" on
  // a line, "Insufficient Funs Comedy Club: GBP 16.00".
  [[nodiscard]] std::vector<NamePlace> all() const {
    std::vector<NamePlace> places;
    for (std::size_t begin = 0; begin < items_.size(); ++begin) {
      const bool number = items_[begin].kind == Item::Kind::number && !items_[begin].isPiece;
      if (!words_.isCapital(begin) && !(number && words_.isCapital(begin + 1))) continue;
      const Found* const first = words_.wordingAt(begin);  // "To FAHAD OMAR", "TRF TO FATIMA BELLO"
      if (first != nullptr && introduces(*first)) continue;
      const bool front = begin == 0 || items_[begin].startsSentence;
      if (!front && !isMark(items_[begin - 1], ",;|:") && !words_.isDash(begin - 1) &&
          !isSlash(begin - 1) && items_[begin - 1].text != "·" &&
          items_[begin - 1].kind != Item::Kind::sum) {
        continue;
      }
      const std::size_t end = endOfField(begin, words_.endOfCapitals(number ? begin + 1 : begin));
      if (end <= begin + 1 || !endsField(begin, end, front) || !words_.hasOwnWord(begin, end))
        continue;
      if (words_.isOutcome(end - 1) || isHeading(begin, end)) continue;
      if (!movesOutside(begin, end) && !isInFrontOfCard(begin, end)) continue;
      // "EGP 50.00 DECLINED FERN MART card 12": a shop or an outcome
      const bool behindSum = begin > 0 && items_[begin - 1].kind == Item::Kind::sum;
      const bool told = behindSum && words_.isOutcome(begin) &&
                        (words_.wordingAt(end) != nullptr || isMark(items_[end], "."));
      places.push_back({begin, told ? begin : end, end});
      begin = end - 1;
    }
    return places;
  }

 private:
  // Whether item `at` is a "/" between blanks, or within a narration in front of the sum.
  [[nodiscard]] bool isSlash(std::size_t at) const {
    if (!isMark(items_[at], "/")) return false;
    const bool apart = !items_[at].glued && at + 1 < items_.size() && !items_[at + 1].glued;
    const bool narration = at > 0 && items_[at - 1].kind == Item::Kind::number &&
                           items_[at - 1].text.size() > 4;  // "UPI/DR/630922/Fern Mart: INR 5.00"
    return apart || narration;
  }

  // Whether `wording` is in front of a name rather than part of one.
  [[nodiscard]] bool introduces(const Found& wording) const {
    constexpr auto prepositions = std::to_array<std::string_view>({"to", "from", "at", "by"});
    if (std::ranges::find(prepositions, items_[wording.begin].text) != prepositions.end()) {
      return true;
    }
    // "$27.60 purchase, Your Statement Cafe, card 12"
    const bool your = wording.is(Marker::own) && items_[wording.begin].text == "your";
    if (your && wording.begin > 0 && isMark(items_[wording.begin - 1], ",") &&
        words_.isCapital(wording.end)) {
      return false;
    }
    if (wording.as<Move>() != nullptr) return wording.end > wording.begin + 1;
    if (wording.as<Marker>() == nullptr) return false;
    // "EGP 57.80, CALL CENTRE CAFE, 12/11"
    const bool word = wording.is(Marker::ends) || wording.is(Marker::footer) ||
                      wording.is(Marker::reference) || wording.is(Marker::info);
    const bool field = wording.begin > 0 && isSlash(wording.begin - 1);
    return !word || !(items_[wording.begin].capitals || field) || isMonth(items_, wording.end) ||
           !words_.isCapital(wording.end) || words_.wordingAt(wording.end) != nullptr;
  }

  // Whether a wording in front of item `begin` or from item `end` on reports a movement.
  [[nodiscard]] bool movesOutside(std::size_t begin, std::size_t end) const {
    return firstMove_ != nullptr && (firstMove_->end <= begin || lastMove_->begin >= end);
  }

  // "R 132,00 VOID WHERE PROHIBITED TATTOO, card *0933": a card slip without a verb.
  [[nodiscard]] bool isInFrontOfCard(std::size_t begin, std::size_t end) const {
    if (begin == 0 || items_[begin - 1].kind != Item::Kind::sum) return false;
    const Found* const first = words_.wordingAt(begin);
    if (first != nullptr && first->as<Move>() != nullptr && !first->is(Move::refund)) return false;
    const std::size_t next = end < items_.size() && isMark(items_[end], ",") ? end + 1 : end;
    return next < items_.size() && words_.isOwnAccount(next);
  }

  // "EGP 1.00 WIN EGP 9000 TODAY card 12": behind the amount, a sum in the same currency belongs to
  // the name.
  [[nodiscard]] std::size_t endOfField(std::size_t begin, std::size_t end) const {
    const bool behindSum = begin > 0 && items_[begin - 1].kind == Item::Kind::sum;
    if (!behindSum || end == begin || end >= items_.size() || !words_.repeatsCurrency(end) ||
        items_[end].sum.currency.empty()) {
      return end;
    }
    const std::size_t next = end + 1;
    return words_.isCapital(next) && !words_.isLabel(next) ? words_.endOfCapitals(next) : next;
  }

  // "Debit Alert", "Heron Bank Card", but not "BILL PAYMENT CENTRE"
  [[nodiscard]] bool isHeading(std::size_t begin, std::size_t end) const {
    constexpr auto words = std::to_array<std::string_view>(
        {"alert", "notice", "notification", "bank", "card", "account", "transaction", "transfer",
         "payment", "purchase"});
    constexpr auto everywhere = std::to_array<std::string_view>({"alert", "bank"});
    const bool behindSum =
        begin > 0 && items_[begin].capitals &&
        (items_[begin - 1].kind == Item::Kind::sum || isMark(items_[begin - 1], ","));
    for (std::size_t at = begin; at < end; ++at) {
      const bool counts = !behindSum || at + 1 == end ||
                          std::ranges::find(everywhere, items_[at].text) != everywhere.end();
      if (counts && std::ranges::find(words, items_[at].text) != words.end()) return true;
    }
    return false;
  }

  [[nodiscard]] bool endsField(std::size_t begin, std::size_t end, bool front) const {
    const bool behind = !front && begin > 0 && items_[begin - 1].kind == Item::Kind::sum;
    if (end >= items_.size()) {
      return behind && items_[begin].capitals && end > begin + 2;  // else a signature
    }
    const Item& item = items_[end];
    if (front && isMark(item, ":")) {
      std::size_t next = end + 1;
      while (next < items_.size() && isMark(items_[next], "+-")) ++next;
      return next < items_.size() && items_[next].kind == Item::Kind::sum;
    }
    if (item.kind == Item::Kind::lineBreak) return end > 0;
    const bool apart = front && isMark(item, ".") && end + 1 < items_.size() &&
                       items_[end + 1].startsSentence && firstSum_ < begin;
    if (apart && !words_.isInWording(begin)) {
      return true;  // "Оплата 720.00 RUR. Кафе Возврат. 21.12.26"
    }
    const Found* const first = words_.wordingAt(begin);
    const Found* const next = words_.wordingAt(end);
    const bool behindSum = !front && begin > 0 && items_[begin - 1].kind == Item::Kind::sum;
    if (behindSum && next != nullptr && next->is(Marker::from) && words_.isSmall(end)) {
      return !words_.isOutcome(begin);  // "EGP 50.00 Declined Fern Mart from card 12"
    }
    const bool verb = first != nullptr && first->as<Move>() != nullptr &&
                      !(words_.isCapital(first->end) && words_.wordingAt(first->end) == nullptr);
    if (behindSum && next != nullptr && !verb &&
        (next->is(Marker::own) || next->is(SumRole::balance) || next->is(SumRole::limit))) {
      return true;  // "EGP 420.00 OFFER MALL card 12"
    }
    if (!front && isMark(item, ".") && end + 1 < items_.size() && items_[end + 1].startsSentence) {
      return true;
    }
    return !front &&
           (item.kind == Item::Kind::sum || item.kind == Item::Kind::number ||
            isMark(item, ",;|") || item.text == "·" || words_.isDash(end) || isSlash(end) ||
            (isMark(item, ":") && begin > 0 && isMark(items_[begin - 1], "/") &&
             end + 1 < items_.size() && items_[end + 1].kind == Item::Kind::sum));
  }

  const Items& items_;
  const CapitalWords& words_;
  const Found* firstMove_ = nullptr;
  const Found* lastMove_ = nullptr;
  std::size_t firstSum_ = 0;  // the number of items without one
};

}  // namespace

std::vector<NamePlace> fieldNames(const AnalysedMessage& message, const CapitalWords& words) {
  return FieldNames(message, words).all();
}

std::vector<NamePlace> quotedNames(const AnalysedMessage& message) {
  const Items& items = message.items;
  std::vector<NamePlace> places;
  constexpr std::size_t longest = 14;
  std::optional<std::size_t> open;
  for (std::size_t at = 0; at < items.size(); ++at) {
    const std::string& text = items[at].text;
    const bool single = text == "'" && (open ? items[at].glued : !items[at].glued);
    const bool quote =
        single || text == "\"" || text == "“" || text == "”" || text == "«" || text == "»";
    if (items[at].kind == Item::Kind::lineBreak || (open && at - *open > longest)) open.reset();
    if (items[at].kind != Item::Kind::mark || !quote) continue;
    if (open && *open + 1 < at) places.push_back({*open + 1, at, at});
    if (open) {
      open.reset();
    } else {
      open = at;
    }
  }
  return places;
}

std::vector<NamePlace> bankNames(const AnalysedMessage& message, const CapitalWords& words) {
  constexpr std::size_t longest = 4;
  const Items& items = message.items;
  if (!words.isCapital(0)) return {};
  const std::size_t end = words.endOfCapitals(0);
  if (end < 2 || end > longest || end + 1 >= items.size()) return {};
  if (!isMark(items[end], ":") && !words.isDash(end)) return {};
  bool moves = false;
  bool movesBehind = false;
  for (const Found& wording : message.wordings) {
    const bool tells = wording.as<Move>() != nullptr || wording.as<Status>() != nullptr;
    if (wording.begin < end) moves = moves || tells;
    if (wording.begin < end && wording.payeeFollows) return {};
    if (wording.begin >= end) movesBehind = movesBehind || wording.as<Move>() != nullptr;
  }
  if (!moves || !movesBehind || !words.hasOwnWord(0, end)) return {};
  return {{0, end, end}};
}

std::vector<NamePlace> bracketedNames(const AnalysedMessage& message, const CapitalWords& words) {
  constexpr std::size_t longest = 16;
  const Items& items = message.items;
  std::vector<NamePlace> places;
  for (std::size_t open = 1; open + 2 < items.size(); ++open) {
    if (items[open].text != "(" || items[open - 1].kind != Item::Kind::sum) continue;
    std::size_t end = open + 1;
    bool own = false;
    while (end < items.size() && end <= open + longest && isUnspaced(items[end].text)) {
      own = own || !words.isInWording(end);
      ++end;
    }
    const bool closes = end < items.size() && items[end].text == ")";
    if (closes && own && end > open + 2) places.push_back({open + 1, end, end});
  }
  return places;
}

}  // namespace kivo::recognition
