#include "ledger/recognition/payee.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <vector>

#include "ledger/recognition/spelling.h"

namespace kivo::ledger {
namespace {

constexpr std::size_t longestName = 60;

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

bool isMark(const Item& item, std::string_view marks) {
  return item.kind == Item::Kind::mark && item.text.size() == 1 &&
         marks.find(item.text.front()) != std::string_view::npos;
}

// Words in a bank's narration that are no names: "UPI/P2M/4249/ORCHID MART".
constexpr auto channelWords = std::to_array<std::string_view>(
    {"upi",  "cr",   "dr",  "imps", "neft", "rtgs", "p2p",  "p2a", "p2m", "p",   "a",    "m",
     "pos",  "ecom", "atm", "bil",  "inft", "mob",  "ift",  "ach", "ref", "no",  "xutr", "tg",
     "y",    "n",    "nfs", "inb",  "ib",   "trf",  "tfr",  "ftr", "txn", "utr", "rrn",  "pay",
     "card", "acct", "ac",  "to",   "from", "by",   "iban", "vpa", "otp", "inr", "onl",  "ft",
     "pmt",  "web",  "app", "ussd", "nip",  "csh",  "cash", "chq", "mmt", "vps", "ips",  "tpt"});

// Words that say how the money went, not to whom: a name is not made of them alone.
constexpr auto commonWords = std::to_array<std::string_view>(
    {"atm",      "transfer", "salary",   "loan",     "cash", "withdrawal", "deposit",
     "payment",  "purchase", "airtime",  "mob",      "bk",   "banking",    "mobile",
     "sms",      "charge",   "charges",  "fee",      "fees", "emi",        "bank",
     "online",   "net",      "internet", "interest", "rent", "txn",        "refund",
     "reversal", "agent",    "it",       "of",       "us",   "them",       "merchant",
     "cheque",   "check",    "savings",  "checking", "self", "others",     "transaction",
     "nil",      "na"});

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
      constexpr int surest = 8;  // "spent on 20-Oct-26 on Web Bazaar"
      if (wording.meaning == Meaning::ends && items_[wording.begin].text == "on") rank = surest;
      // Where money came, "at" is a branch, unless a shop gives it back.
      if (kind_ == Kind::income && wording.meaning == Meaning::at && !givesBack) rank.reset();
      if (!rank || *rank >= bestRank) continue;
      const bool before = wording.namePrecedes || wording.meaning == Meaning::credited;
      std::string name = before ? nameBefore(wording) : nameBehind(wording);
      if (name.empty()) continue;
      best = std::move(name);
      bestRank = *rank;
    }
    return best.empty() ? nameBehindSum() : best;
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
    }
    const bool digits = items_[begin].kind == Item::Kind::number;
    if (digits && items_[begin].text.size() > 4) begin = behindMask(begin);
    if (isMark(items_[begin - 1], "*") || items_[begin].kind == Item::Kind::mark)
      begin = behindMask(begin);
    if (begin >= items_.size() || !beginsName(begin)) return {};
    const std::size_t end = endOfName(begin, wording.meaning);
    const bool latin = static_cast<unsigned char>(items_[wording.begin].text.front()) < 0x80;
    if (latin && isProse(wording.meaning, begin, end)) return {};
    // "from Lotus Bank card 12", but in Arabic "from the shop by card 12".
    const bool ownSide = wording.meaning == Meaning::ends ||
                         (latin && kind_ != Kind::income && wording.meaning == Meaning::from);
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
      return word == "has" || word == "been" || word == "is" || word == "was";
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

  // "DEBIT:Rs.983.75 TAMARIND KITCHEN Bal:Rs.1234.67": nothing introduces it but its capitals.
  [[nodiscard]] std::string nameBehindSum() const {
    const auto sum = std::find_if(items_.begin(), items_.end(),
                                  [](const Item& item) { return item.kind == Item::Kind::sum; });
    if (sum == items_.end() || sum + 1 == items_.end()) return {};
    auto begin = static_cast<std::size_t>(sum - items_.begin()) + 1;
    const bool ownLine = items_[begin].kind == Item::Kind::lineBreak || isMark(items_[begin], "|");
    if (ownLine && begin + 1 < items_.size()) ++begin;
    constexpr std::size_t shortest = 3;
    const Item& first = items_[begin];
    if (!first.capitals || first.text.size() < shortest || (first.startsSentence && !ownLine) ||
        at_[begin] != nullptr) {
      return {};
    }
    return plain(begin, endOfName(begin, Meaning::to));
  }

  [[nodiscard]] bool beginsName(std::size_t at) const {
    const Item& item = items_[at];
    if (item.kind == Item::Kind::sum || item.kind == Item::Kind::lineBreak || item.isPiece)
      return false;
    const bool article = item.text == "the" || item.text == "a" || item.text == "an";
    if (article && readable_[item.begin] != 'T') return false;
    constexpr auto pronouns =
        std::to_array<std::string_view>({"we", "you", "i", "dear", "hi", "it"});
    if (std::find(pronouns.begin(), pronouns.end(), item.text) != pronouns.end()) return false;
    // "on Nov 6"
    if (at + 1 < items_.size() && items_[at + 1].isPiece && !items_[at + 1].glued) return false;
    if (isWordOf(
            at, {Meaning::own, Meaning::amount, Meaning::balance, Meaning::reference, Meaning::ends,
                 Meaning::limit, Meaning::charge, Meaning::code, Meaning::done})) {
      // "Card Zone" and "Account Books" are names; "card 1234" and "account" are none.
      return false;
    }
    return true;
  }

  // Whether a comma goes on with the name: "MAPLE HARDWARE, AUSTIN, TX for ...".
  [[nodiscard]] bool goesOnBehindComma(std::size_t comma, std::size_t begin) const {
    return comma + 1 < items_.size() && items_[comma + 1].capitals && items_[begin].capitals &&
           at_[comma + 1] == nullptr;
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
    if (isMark(item, ";()[]|\"!?") || (isMark(item, "*") && !item.glued)) return true;
    if (isMark(item, ":") && !item.glued) return true;
    if (isMark(item, "-") && !item.glued && at + 1 < items_.size() && items_[at + 1].glued &&
        introduced != Meaning::info) {
      return true;  // a signature: "-Orchid Bank"
    }
    if (isMark(item, ".")) {
      const bool blankFollows = at + 1 >= items_.size() || !items_[at + 1].glued;
      return blankFollows && (!item.glued || item.begin - items_[begin].begin > 3);
    }
    if (item.glued && item.kind == Item::Kind::word) return false;
    if (introduced == Meaning::info) {
      return isWordOf(at, {Meaning::balance, Meaning::limit}) ||
             (isWordOf(at, {Meaning::ends}) && !item.capitals);
    }
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

  [[nodiscard]] std::size_t endOfName(std::size_t begin, Meaning introduced) const {
    std::size_t end = begin + 1;
    while (end < items_.size() && !endsName(end, begin, introduced)) ++end;
    return end;
  }

  [[nodiscard]] bool isChannel(std::size_t at) const {
    return std::find(channelWords.begin(), channelWords.end(), items_[at].text) !=
           channelWords.end();
  }

  // The piece of a narration such as "UPI/CR/42494/MEERA NAIR/Y" that is a name: words that are no
  // channel, without digits.
  [[nodiscard]] std::string narrated(std::size_t begin, std::size_t end) const {
    std::size_t piece = begin;
    for (std::size_t at = begin; at <= end; ++at) {
      const bool cut =
          at == end || isMark(items_[at], "/") || (isMark(items_[at], "-:*") && items_[at].glued);
      if (!cut) continue;
      const auto isName = [&](std::size_t word) {
        return items_[word].kind == Item::Kind::word && items_[word].text.size() > 2 &&
               std::find(channelWords.begin(), channelWords.end(), items_[word].text) ==
                   channelWords.end() &&
               items_[word].text.find_first_not_of('x') != std::string::npos;
      };
      bool named = false;
      for (std::size_t word = piece; word < at; ++word) named = named || isName(word);
      while (named && isChannel(piece)) ++piece;
      if (named) return plain(piece, at);
      piece = at + 1;
    }
    return {};
  }

  [[nodiscard]] std::string plain(std::size_t begin, std::size_t end) const {
    if (begin >= end) return {};
    const auto namesSomebody = [](const Item& item) {
      return item.kind == Item::Kind::word &&
             item.text.find_first_not_of('x') != std::string::npos &&
             std::find(commonWords.begin(), commonWords.end(), item.text) == commonWords.end() &&
             std::find(channelWords.begin(), channelWords.end(), item.text) == channelWords.end();
    };
    if (std::none_of(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                     items_.begin() + static_cast<std::ptrdiff_t>(end), namesSomebody)) {
      return {};
    }
    return shownPayee(
        readable_.substr(items_[begin].begin, items_[end - 1].end - items_[begin].begin));
  }

  [[nodiscard]] std::string shown(std::size_t begin, std::size_t end, Meaning introduced) const {
    const bool slashes = std::any_of(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                                     items_.begin() + static_cast<std::ptrdiff_t>(end),
                                     [](const Item& item) { return isMark(item, "/"); });
    const bool channel = isChannel(begin);
    const bool place = introduced == Meaning::at || introduced == Meaning::label;
    if ((slashes && (channel || !place)) || (introduced == Meaning::info && channel)) {
      return narrated(begin, end);
    }
    return plain(begin, end);
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

std::string shownPayee(std::string_view name) {
  std::string line(name);
  std::replace_if(
      line.begin(), line.end(),
      [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
  constexpr std::string_view edges = " \"'*:-.,#;/_";
  const std::size_t begin = line.find_first_not_of(edges);
  if (begin == std::string::npos) return {};
  line.erase(0, begin);
  line.resize(wholeCharacters(line, longestName));
  line.erase(line.find_last_not_of(edges) + 1);
  return line;
}

}  // namespace kivo::ledger
