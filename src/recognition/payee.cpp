#include "recognition/payee.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "names/letter_case.h"
#include "recognition/lone_name.h"
#include "recognition/name_extent.h"
#include "recognition/name_text.h"
#include "recognition/number_pieces.h"

namespace kivo::recognition {

using money::Kind;
using names::LetterCase;

namespace {

bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

// The places that name a payee.
enum class Place {
  wording,    // a wording with "^": "you made a # transaction with ^"
  label,      // "Merchant: ..."
  shop,       // "at ..."
  recipient,  // "to ...", "... credited"
  narration,  // "Info: ..."
  purpose,    // "towards ..."
  behindSum,  // a name directly behind a sum (name_places.h)
  agent,      // "by ..."
  source,     // "from ..."
  date,       // "on ...", which mostly is a date: "spent on 20-Oct-26 on Web Bazaar"
  front,      // directly in front of the sum
  alone,      // no words introduce it
};

// The order in which a payee is looked for. The first place with a name counts; of places of one
// sort, the first in the message.
constexpr auto placesOfExpense = std::to_array<Place>(
    {Place::wording, Place::label, Place::shop, Place::recipient, Place::narration, Place::purpose,
     Place::behindSum, Place::agent, Place::source, Place::date, Place::front, Place::alone});
constexpr auto placesOfIncome =
    std::to_array<Place>({Place::wording, Place::label, Place::source, Place::agent, Place::shop,
                          Place::narration, Place::purpose, Place::date, Place::front});

// The places of the agent who paid out cash. Elsewhere is the name of a machine or branch.
constexpr auto placesOfWithdrawal = std::to_array<Place>(
    {Place::wording, Place::label, Place::recipient, Place::narration, Place::purpose,
     Place::behindSum, Place::agent, Place::source, Place::front});

constexpr auto agents = std::to_array<std::string_view>(
    {"agent", "agents", "agency", "agencies", "wakala", "agente", "l'agent", "وكيل", "الوكيل"});

// Words for a cash machine.
constexpr auto machines = std::to_array<std::string_view>(
    {"atm",      "abm",       "gab",       "dab",       "cdm",      "صراف",      "الصراف",
     "ماكينه",   "الماكينه",  "موزع",      "الموزع",    "الشباك",   "عابربانک",  "خودپرداز",
     "bankomat", "bankomatu", "automat",   "automaten", "банкомат", "банкомата", "банкомате",
     "cajero",   "bancomat",  "sportello", "multibanco"});

std::optional<Place> placeOf(Marker marker) {
  switch (marker) {
    case Marker::label:
      return Place::label;
    case Marker::at:
      return Place::shop;
    case Marker::to:
      return Place::recipient;
    case Marker::info:
      return Place::narration;
    case Marker::towards:
      return Place::purpose;
    case Marker::by:
      return Place::agent;
    case Marker::from:
      return Place::source;
    case Marker::ends:
    case Marker::footer:
    case Marker::own:
    case Marker::reference:
      break;
  }
  return std::nullopt;
}

// The place of the first footer wording behind a sum; the end of the message without one.
std::size_t footerOf(const AnalysedMessage& message) {
  const auto sum = std::ranges::find(message.items, Item::Kind::sum, &Item::kind);
  const auto behind = static_cast<std::size_t>(sum - message.items.begin());
  for (const Found& wording : message.wordings) {
    if (wording.begin > behind && wording.is(Marker::footer)) return wording.begin;
  }
  return message.items.size();
}

class Names {
 public:
  Names(const AnalysedMessage& message, Kind kind)
      : message_(message),
        items_(message.items),
        kind_(kind),
        extent_(message),
        footer_(footerOf(message)) {}

  [[nodiscard]] std::string first() const {
    const auto places = kind_ == Kind::income ? std::span<const Place>(placesOfIncome)
                                              : std::span<const Place>(placesOfExpense);
    std::string name = firstOf(places);
    if (!name.empty()) return name;
    const bool refund = kind_ == Kind::income && holds(message_.wordings, Move::refund);
    return refund ? loneName(message_, footer_) : std::string();
  }

  [[nodiscard]] std::string agent() const {
    if (says(agents)) return firstOf(placesOfExpense);
    if (!says(machines) && !holds(message_.wordings, Move::machine)) {
      return firstOf(placesOfWithdrawal);
    }
    constexpr std::string_view machine = " ATM";
    for (const Place place : {Place::shop, Place::source}) {
      std::string name = nameAt(place);
      const bool latin = !name.empty() && isAscii(name.front());
      if (latin && name.ends_with(machine)) return name;  // "OTP Bank ATM"
    }
    return {};
  }

 private:
  [[nodiscard]] bool says(std::span<const std::string_view> words) const {
    return std::ranges::any_of(items_, [&](const Item& item) {
      return std::ranges::find(words, item.text) != words.end();
    });
  }

  [[nodiscard]] std::string firstOf(std::span<const Place> places) const {
    for (const Place place : places) {
      std::string name = place == Place::alone       ? loneName(message_, footer_)
                         : place == Place::front     ? nameBeforeSum(message_)
                         : place == Place::behindSum ? nameBehindSum()
                                                     : nameAt(place);
      if (!name.empty()) return name;
    }
    return {};
  }

  [[nodiscard]] std::string nameAt(Place place) const {
    for (const Found& wording : message_.wordings) {
      if (wording.begin >= footer_) break;
      if (placeBeside(wording) != place) continue;
      const bool before =
          wording.payeePrecedes || (wording.is(Move::credited) && !endsWithBy(wording));
      std::string name = before ? nameBefore(wording) : nameBehind(wording);
      if (!name.empty()) return name;
    }
    return {};
  }

  // "$210.00 Return To Sender LLC from CHK 4410"
  [[nodiscard]] std::string nameBehindSum() const {
    for (std::size_t at = 1; at < footer_; ++at) {
      const bool bracket = items_[at - 1].text == "(";
      const std::size_t front = bracket && at > 1 ? at - 2 : at - 1;
      if (!items_[at].named || items_[front].kind != Item::Kind::sum) continue;
      std::size_t end = at;
      while (end < items_.size() && items_[end].named && !items_[end].isPiece) ++end;
      if (end < items_.size() && items_[end].named) continue;  // "Rs.599.00 A/c X7477"
      return nameBetween(message_, at, end);
    }
    return {};
  }

  [[nodiscard]] std::optional<Place> placeBeside(const Found& wording) const {
    const std::string& word = items_[wording.begin].text;
    if (wording.is(Marker::ends) && (word == "on" || word == "في")) return Place::date;
    if (wording.is(Marker::at) && !mayBeShop()) return std::nullopt;
    if (wording.is(Marker::label) && isPartOfName(wording.begin)) return std::nullopt;
    if (wording.payeeFollows || wording.payeePrecedes) return Place::wording;
    if (wording.is(Move::credited)) return endsWithBy(wording) ? Place::agent : Place::recipient;
    const Marker* const marker = wording.as<Marker>();
    return marker == nullptr ? std::nullopt : placeOf(*marker);
  }

  // "credited by ABEBE KEBEDE"
  [[nodiscard]] bool endsWithBy(const Found& wording) const {
    return items_[wording.end - 1].text == "by";
  }

  // "PINE MERCHANT CO": a label in capitals behind a word in capitals.
  [[nodiscard]] bool isPartOfName(std::size_t at) const {
    return at > 0 && items_[at].capitals && items_[at - 1].capitals && !items_[at].startsSentence &&
           !extent_.isWordOf(at - 1, {Marker::to, Marker::at});
  }

  // In an income, "at" is in front of a branch of the bank, unless a shop gives money back.
  [[nodiscard]] bool mayBeShop() const {
    return kind_ != Kind::income || holds(message_.wordings, Move::refund) ||
           holds(message_.wordings, Move::cashback);
  }

  [[nodiscard]] std::string nameBehind(const Found& wording) const {
    std::size_t begin = wording.end;
    while (begin < items_.size() && isMark(items_[begin], ":-.\"'(*")) ++begin;
    if (begin >= items_.size() || items_[begin].kind == Item::Kind::lineBreak) {
      const bool labelled = wording.is(Marker::label) || wording.is(Marker::info);
      if (!labelled || begin + 1 >= items_.size()) return {};
      ++begin;
      if (extent_.isWordOf(begin, {Marker::from, Marker::to, Marker::at}))
        return {};  // another label
    }
    constexpr std::size_t longestHouseNumber = 4;
    const bool digits = items_[begin].kind == Item::Kind::number;
    const bool masked = isMark(items_[begin - 1], "*") || extent_.isMask(begin) ||
                        items_[begin].kind == Item::Kind::mark;
    const bool skips = masked || (digits && items_[begin].text.size() > longestHouseNumber);
    if (skips && !items_[begin].named) begin = extent_.behindMask(begin);
    if (extent_.isWordOf(begin, {Marker::label}))
      begin = extent_.wordingAt(begin)->end;  // "to Merchant STAR KABAB"
    if (begin >= items_.size() || !extent_.mayBegin(begin)) return {};
    const Marker* const marker = wording.as<Marker>();
    const Introduction introduced = marker == nullptr ? Introduction() : *marker;
    const std::size_t end = extent_.endOfName(begin, introduced);
    if (introduced == Marker::towards && namesFee(items_, begin, end)) return {};
    if (introduced == Marker::towards && namesLoan(items_, begin, end)) return {};
    const std::string& word = items_[wording.begin].text;
    const bool cased = isAscii(word.front()) || names::caseOfFirst(word) != LetterCase::none;
    if (cased && !items_[begin].named && extent_.isProse(introduced, begin, end)) return {};
    // "from Lotus Bank card 12" is the person's side. In Arabic it is "from the shop by card 12".
    const bool ownSide = cased && (introduced == Marker::ends ||
                                   (kind_ != Kind::income && introduced == Marker::from));
    if (ownSide && extent_.isWordOf(end, {Marker::own})) return {};
    return shown(begin, end, introduced);
  }

  // "ASHA RAO credited", "Asha Rao has received": a name in front of a wording begins behind the
  // last mark or sum, or with the sentence.
  [[nodiscard]] std::string nameBefore(const Found& wording) const {
    std::size_t end = wording.begin;
    const auto auxiliary = [this](std::size_t at) {
      const std::string& word = items_[at].text;
      return word == "just" || word == "has" || word == "been" || word == "is" || word == "was";
    };
    while (end > 0 && auxiliary(end - 1)) --end;
    // Without capitals, only its meaning tells a verb from the name: "출금 솔마트 잔액".
    const auto isVerb = [this](std::size_t at) {
      return !isAscii(items_[at].text.back()) &&
             std::ranges::any_of(message_.wordings, [at](const Found& known) {
               return known.begin <= at && at < known.end && known.as<Move>() != nullptr;
             });
    };
    std::size_t begin = end;
    while (
        !items_[begin].startsSentence &&  // the first item does
        (items_[begin - 1].kind == Item::Kind::word || isMark(items_[begin - 1], ".'&-*")) &&
        !extent_.isWordOf(begin - 1, {Marker::ends, Marker::own, SumRole::balance, Marker::from}) &&
        !isVerb(begin - 1)) {
      --begin;
    }
    if (begin == end || !extent_.mayBegin(begin)) return {};
    return shown(begin, end, Marker::label);
  }

  [[nodiscard]] std::string shown(std::size_t begin, std::size_t end,
                                  Introduction introduced) const {
    const bool salary = introduced == Marker::info && kind_ == Kind::income &&
                        items_[begin].text == "salary" && end > begin + 1 &&
                        items_[begin + 1].capitals && !isMonth(items_, begin + 1);
    if (salary) ++begin;  // "Ref.SALARY FERN LOGISTICS"
    const bool slashes = std::any_of(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                                     items_.begin() + static_cast<std::ptrdiff_t>(end),
                                     [](const Item& item) { return isMark(item, "/"); });
    const bool channel =
        isChannelWord(items_[begin].text) &&
        !(items_[begin].named && introduced != Marker::info && isOrdinaryWord(items_[begin].text));
    const bool place = introduced == Marker::at || introduced == Marker::label;
    if ((slashes && (channel || !place)) ||
        (channel && (introduced == Marker::info || introduced == Marker::by ||
                     introduced == Marker::towards))) {
      return nameInNarration(message_, begin, end);
    }
    std::string name = nameBetween(message_, begin, end);
    if (name.empty() && introduced == Marker::at && items_[begin].named && end > begin + 1 &&
        !isRemoteChannel(items_[begin].text)) {
      name = shownPayee(message_.text.substr(
          items_[begin].begin, items_[end - 1].end - items_[begin].begin));  // "OTP Bank ATM"
    }
    return name;
  }

  const AnalysedMessage& message_;
  const Items& items_;
  const Kind kind_;
  const NameExtent extent_;
  const std::size_t footer_;  // where the footer begins
};

}  // namespace

std::string payeeIn(const AnalysedMessage& message, Kind kind) {
  return Names(message, kind).first();
}

std::string agentIn(const AnalysedMessage& message) {
  return Names(message, Kind::expense).agent();
}

}  // namespace kivo::recognition
