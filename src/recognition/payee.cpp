#include "recognition/payee.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <vector>

#include "recognition/lone_name.h"
#include "recognition/name_text.h"

namespace kivo::recognition {

using money::Kind;

namespace {

// The order in which introductions are believed; a lower number is surer.
std::optional<int> rankOf(Meaning meaning, bool nameBeside, Kind kind) {
  const bool income = kind == Kind::income;
  if (nameBeside) return 0;
  switch (meaning) {
    case Meaning::label:
      return 1;
    case Meaning::at:
      return income ? 4 : 2;
    case Meaning::to:
      return income ? std::nullopt : std::optional(3);
    case Meaning::towards:
      return income ? std::nullopt : std::optional(5);
    case Meaning::info:
      return income ? 5 : 4;
    case Meaning::by:
      return income ? 3 : 6;
    case Meaning::credited:
      return income ? std::nullopt : std::optional(3);
    case Meaning::from:
      return income ? 2 : 7;
    default:
      return std::nullopt;
  }
}

class Names {
 public:
  Names(std::string_view readable, const Items& items, std::span<const Found> found, Kind kind)
      : readable_(readable), items_(items), found_(found), kind_(kind), at_(items.size(), nullptr) {
    for (const Found& wording : found) at_[wording.begin] = &wording;
  }

  [[nodiscard]] std::string best() const {
    std::string best;
    int bestRank = 100;
    const bool givesBack = std::any_of(found_.begin(), found_.end(), [](const Found& wording) {
      return wording.meaning == Meaning::refund || wording.meaning == Meaning::cashback;
    });
    for (const Found& wording : found_) {
      auto rank = rankOf(wording.meaning, wording.nameFollows || wording.namePrecedes, kind_);
      constexpr int leastSure = 8;  // "spent on 20-Oct-26 on Web Bazaar"
      const std::string& word = items_[wording.begin].text;
      if (wording.meaning == Meaning::ends && (word == "on" || word == "في")) rank = leastSure;
      // Where money came, "at" is a branch, unless a shop gives it back.
      if (kind_ == Kind::income && wording.meaning == Meaning::at && !givesBack) rank.reset();
      if (!rank || *rank >= bestRank) continue;
      const bool before = wording.namePrecedes || wording.meaning == Meaning::credited;
      std::string name = before ? nameBefore(wording) : nameBehind(wording);
      if (name.empty()) continue;
      best = std::move(name);
      bestRank = *rank;
    }
    return best.empty() && kind_ == Kind::expense ? loneName(readable_, items_, found_) : best;
  }

 private:
  [[nodiscard]] bool isWordOf(std::size_t at, std::initializer_list<Meaning> meanings) const {
    return at < items_.size() && at_[at] != nullptr &&
           std::find(meanings.begin(), meanings.end(), at_[at]->meaning) != meanings.end();
  }

  // A masked account or a telephone number in front of the name: "****; Ahmad", "0722000000 -
  // JANE".
  [[nodiscard]] std::size_t behindMask(std::size_t at) const {
    const std::size_t begin = at;
    while (at < items_.size() &&
           (isMark(items_[at], "*:-.") || items_[at].kind == Item::Kind::number ||
            (items_[at].kind == Item::Kind::mark && items_[at].text.size() > 1))) {
      ++at;
    }
    if (at > begin && at < items_.size() && isMark(items_[at], ";,-/")) ++at;
    return at;
  }

  [[nodiscard]] std::string nameBehind(const Found& wording) const {
    std::size_t begin = wording.end;
    while (begin < items_.size() && isMark(items_[begin], ":-.\"'(*")) ++begin;
    if (begin >= items_.size() || items_[begin].kind == Item::Kind::lineBreak) {
      const bool labelled = wording.meaning == Meaning::label || wording.meaning == Meaning::info;
      if (!labelled || begin + 1 >= items_.size()) return {};
      ++begin;
      if (isWordOf(begin, {Meaning::from, Meaning::to, Meaning::at})) return {};  // another label
    }
    constexpr std::size_t longestHouseNumber = 4;
    const bool digits = items_[begin].kind == Item::Kind::number;
    const bool masked = isMark(items_[begin - 1], "*") || items_[begin].kind == Item::Kind::mark;
    if (masked || (digits && items_[begin].text.size() > longestHouseNumber))
      begin = behindMask(begin);
    if (isWordOf(begin, {Meaning::label})) begin = at_[begin]->end;  // "to Merchant STAR KABAB"
    if (begin >= items_.size() || !beginsName(begin)) return {};
    const std::size_t end = endOfName(begin, wording.meaning);
    const bool latin = static_cast<unsigned char>(items_[wording.begin].text.front()) < 0x80;
    if (latin && isProse(wording.meaning, begin, end)) return {};
    // "from Lotus Bank card 12", but in Arabic "from the shop by card 12".
    const bool ownSide = latin && (wording.meaning == Meaning::ends ||
                                   (kind_ != Kind::income && wording.meaning == Meaning::from));
    if (ownSide && isWordOf(end, {Meaning::own})) return {};
    return shown(begin, end, wording.meaning);
  }

  // Behind "for", "by" and the like a name has a capital, unless it is an address: "lotus@upi".
  [[nodiscard]] bool isProse(Meaning introduced, std::size_t begin, std::size_t end) const {
    if (introduced != Meaning::towards && introduced != Meaning::by && introduced != Meaning::to &&
        introduced != Meaning::from && introduced != Meaning::ends) {
      return false;
    }
    const char first = readable_[items_[begin].begin];
    const bool small = first >= 'a' && first <= 'z';
    const bool latin = items_[begin].kind != Item::Kind::word || small ||
                       std::isupper(static_cast<unsigned char>(first)) != 0;
    // "on Nov 6"
    const bool day = begin + 1 < items_.size() && items_[begin + 1].isPiece;
    if (introduced == Meaning::ends && day) return true;
    if (introduced == Meaning::ends && (items_[begin].kind != Item::Kind::word || !latin))
      return true;
    return small && std::none_of(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                                 items_.begin() + static_cast<std::ptrdiff_t>(end),
                                 [](const Item& item) { return isMark(item, "@._"); });
  }

  // "ASHA RAO credited", "Asha Rao has received": from the last mark, sum or sentence on.
  [[nodiscard]] std::string nameBefore(const Found& wording) const {
    std::size_t end = wording.begin;
    const auto auxiliary = [this](std::size_t at) {
      const std::string& word = items_[at].text;
      return word == "just" || word == "has" || word == "been" || word == "is" || word == "was";
    };
    while (end > 0 && auxiliary(end - 1)) --end;
    std::size_t begin = end;
    while (begin > 0 && !items_[begin].startsSentence &&
           (items_[begin - 1].kind == Item::Kind::word || isMark(items_[begin - 1], ".'&-")) &&
           !isWordOf(begin - 1, {Meaning::ends, Meaning::own, Meaning::balance, Meaning::from})) {
      --begin;
    }
    if (begin == end || !beginsName(begin)) return {};
    return shown(begin, end, Meaning::label);
  }

  [[nodiscard]] bool beginsName(std::size_t at) const {
    const Item& item = items_[at];
    if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak || item.isPiece)
      return false;
    const bool initial = item.capitals && at + 1 < items_.size() && items_[at + 1].capitals;
    const bool article = !initial && (item.text == "the" || item.text == "a" || item.text == "an");
    if (article && readable_[item.begin] != 'T') return false;
    constexpr auto pronouns =
        std::to_array<std::string_view>({"we", "we've", "you", "you've", "i", "dear", "hi", "it"});
    if (std::find(pronouns.begin(), pronouns.end(), item.text) != pronouns.end()) return false;
    if (isWordOf(
            at, {Meaning::own, Meaning::amount, Meaning::balance, Meaning::reference, Meaning::ends,
                 Meaning::limit, Meaning::charge, Meaning::code, Meaning::done})) {
      // "Card Zone" and "Account Books" are names; "card 1234" and "account" are not.
      return false;
    }
    return true;
  }

  // Whether a comma goes on with the name: "MAPLE HARDWARE, AUSTIN, TX for ...".
  [[nodiscard]] bool goesOnBehindComma(std::size_t comma, std::size_t begin) const {
    return comma + 1 < items_.size() && items_[comma + 1].capitals && items_[begin].capitals &&
           at_[comma + 1] == nullptr;
  }

  // The brackets in "HARBOUR DIM SUM (TST) was".
  [[nodiscard]] bool isBracketed(std::size_t at, std::size_t begin) const {
    constexpr std::size_t width = 2;
    std::size_t open = at;
    if (isMark(items_[at], ")") && at >= begin + width) open = at - width;
    if (open + width >= items_.size()) return false;
    return isMark(items_[open], "(") && items_[begin].capitals && items_[open + 1].capitals &&
           isMark(items_[open + width], ")");
  }

  [[nodiscard]] bool isNameWord(std::size_t at) const {
    return at_[at] == nullptr && beginsLikeAName(readable_, items_[at]);
  }

  // "MARIA L. SANTOS"
  [[nodiscard]] bool isInitial(std::size_t point) const {
    const Item& letter = items_[point - 1];
    return letter.capitals && letter.end - letter.begin == 1 && point + 1 < items_.size() &&
           isNameWord(point + 1);
  }

  // "Panaderia El Trigal el 14/07"
  [[nodiscard]] bool isArticle(std::size_t at) const {
    constexpr std::size_t longest = 2;
    return items_[at].text.size() <= longest && at + 1 < items_.size() &&
           std::isupper(static_cast<unsigned char>(readable_[items_[at].begin])) != 0 &&
           isNameWord(at + 1);
  }

  // Whether a name that began at `begin` ends before the word `at`, no mark being between them.
  [[nodiscard]] bool isBehindName(std::size_t at, std::size_t begin, Meaning introduced) const {
    const Item& item = items_[at];
    const bool ideograph = item.text.starts_with(items_[begin].text.substr(0, 1)) &&
                           static_cast<unsigned char>(item.text.front()) >= 0xE4;
    if (item.glued && item.kind == Item::Kind::word && !ideograph) return false;
    if (introduced == Meaning::info) {
      return isWordOf(at, {Meaning::balance, Meaning::limit}) ||
             (isWordOf(at, {Meaning::ends}) && (!item.capitals || item.text == "sms"));
    }
    if (isArticle(at)) return false;
    if (isWordOf(at,
                 {Meaning::ends, Meaning::own, Meaning::balance, Meaning::limit, Meaning::reference,
                  Meaning::from, Meaning::to, Meaning::towards, Meaning::by, Meaning::info})) {
      return true;
    }
    // "COUNCIL TAX" is all name, "Council tax" need not be.
    if (item.capitals && items_[begin].capitals) return false;
    return isWordOf(
        at, {Meaning::at, Meaning::amount, Meaning::charge, Meaning::done, Meaning::credited,
             Meaning::debited, Meaning::spent, Meaning::paid, Meaning::sent, Meaning::received,
             Meaning::declined, Meaning::notYet, Meaning::refund, Meaning::aside});
  }

  [[nodiscard]] bool endsName(std::size_t at, std::size_t begin, Meaning introduced) const {
    const Item& item = items_[at];
    if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak || item.startsSentence) {
      return true;
    }
    if (item.kind == Item::Kind::number) {
      return item.isPiece ? !items_[at - 1].glued && !item.glued
                          : item.text.size() > 4 && !item.glued;
    }
    if (isMark(item, ",")) return !goesOnBehindComma(at, begin);
    if (item.text.starts_with("\xF0\x9F")) return true;  // a picture
    if (isBracketed(at, begin)) return false;
    if (isMark(item, ";()[]|\"!?") || (isMark(item, "*") && !item.glued)) return true;
    if (isMark(item, ":") && !item.glued) return true;
    if (isMark(item, "-") && !item.glued && at + 1 < items_.size() && items_[at + 1].glued &&
        introduced != Meaning::info) {
      return true;  // a signature: "-Orchid Bank"
    }
    if (isMark(item, ".")) {
      if (isInitial(at)) return false;
      const bool blankFollows = at + 1 >= items_.size() || !items_[at + 1].glued;
      return blankFollows && (!item.glued || item.begin - items_[begin].begin > 3);
    }
    return isBehindName(at, begin, introduced);
  }

  [[nodiscard]] std::size_t endOfName(std::size_t begin, Meaning introduced) const {
    std::size_t end = begin + 1;
    while (end < items_.size() && !endsName(end, begin, introduced)) ++end;
    return end;
  }

  [[nodiscard]] std::string shown(std::size_t begin, std::size_t end, Meaning introduced) const {
    const bool slashes = std::any_of(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                                     items_.begin() + static_cast<std::ptrdiff_t>(end),
                                     [](const Item& item) { return isMark(item, "/"); });
    const bool channel = isChannelWord(items_[begin].text);
    const bool place = introduced == Meaning::at || introduced == Meaning::label;
    if ((slashes && (channel || !place)) ||
        (channel && (introduced == Meaning::info || introduced == Meaning::by))) {
      return nameInNarration(readable_, items_, begin, end);
    }
    return nameBetween(readable_, items_, begin, end);
  }

  const std::string_view readable_;
  const Items& items_;
  const std::span<const Found> found_;
  const Kind kind_;
  std::vector<const Found*> at_;  // the wording that begins at an item
};

}  // namespace

std::string payeeIn(std::string_view readable, const Items& items, std::span<const Found> found,
                    Kind kind) {
  return Names(readable, items, found, kind).best();
}

}  // namespace kivo::recognition
