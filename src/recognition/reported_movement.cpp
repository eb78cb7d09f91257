#include "recognition/reported_movement.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "names/letter_case.h"
#include "recognition/reported_part.h"

namespace kivo::recognition {
namespace {

// The movement by the sign of the sum: "-250,000VND ... SD: 3,110,000VND". Null without a sign.
const Movement* movementBySign(const Sum& sum) {
  if (sum.sign == '-') return &movementOf(Move::debit);
  return sum.sign == '+' ? &movementOf(Move::credit) : nullptr;
}

// Whether the item behind the wording with this index is a word, and of no other wording.
bool isFollowedByName(const AnalysedMessage& message, std::size_t index) {
  const std::vector<Found>& wordings = message.wordings;
  const std::size_t behind = wordings[index].end;
  if (behind >= message.items.size()) return false;
  if (message.items[behind].named) return true;
  if (message.items[behind].kind != Item::Kind::word) return false;
  return index + 1 == wordings.size() || wordings[index + 1].begin != behind;
}

// Whether the wording with this index labels a shop: "Merchant: Fern Books".
bool labelsShop(const AnalysedMessage& message, std::size_t index) {
  constexpr auto words =
      std::to_array<std::string_view>({"merchant", "shop", "store", "التاجر", "المتجر"});
  const Found& wording = message.wordings[index];
  return wording.is(Marker::label) && message.items[wording.begin].startsSentence &&
         std::ranges::find(words, message.items[wording.begin].text) != words.end();
}

// Whether a word with a capital that is of no wording is beside the sum at item `sum`: "R 205,60
// FERN STORES, card *0933", "FERN STORES 18,99 PLN, karta 0933".
bool isBesideName(const AnalysedMessage& message, std::size_t sum) {
  const auto isName = [&](std::size_t at) {
    const Item& item = message.items[at];
    if (item.kind != Item::Kind::word) return false;
    if (item.named) return true;
    const bool capital =
        names::caseOfFirst(message.text.substr(item.begin)) == names::LetterCase::capital;
    return capital && std::ranges::none_of(message.wordings, [at](const Found& wording) {
             return wording.begin <= at && at < wording.end;
           });
  };
  const bool front = sum > 1 && !message.items[sum].startsSentence && isName(sum - 1);
  std::size_t next = sum + 1;
  while (next < message.items.size() && isMark(message.items[next], ",|-")) ++next;
  return front || (next < message.items.size() && isName(next));
}

// "Card 1199 | AED 52.00 | GREEN GROCER | Approved", "Card **2201: KWD 6.500 at PIZZA LAND",
// "£12.00 at Fern Café. Balance £88.00", "$15.00 to Asha Rao on 5-11 from a/c 12": without a
// wording of a movement, the marker in front of the payee tells the direction.
const Movement* movementByPlace(const AnalysedMessage& message, const SumParts& sums) {
  const std::vector<Found>& wordings = message.wordings;
  const bool own = holds(wordings, Marker::own);
  if (own && holds(wordings, Status::done)) return &movementOf(Move::transaction);
  if (!holds(wordings, SumRole::limit) && !showsEvidence(message)) return nullptr;
  for (std::size_t index = 0; index < wordings.size(); ++index) {
    if (own && labelsShop(message, index)) return &movementOf(Move::transaction);
    const bool out = wordings[index].is(Marker::at) || wordings[index].is(Marker::to);
    const bool in = wordings[index].is(Marker::from) && own;
    const bool ownSide = index + 1 < wordings.size() && wordings[index + 1].is(Marker::own) &&
                         wordings[index + 1].begin == wordings[index].end;
    if (in && ownSide) return &movementOf(Move::debit);  // "Rs.50 lotus@upi UPI frm A/c X12"
    if (!out && !in) continue;
    if (isFollowedByName(message, index)) {
      return &movementOf(out ? Move::transaction : Move::transferIn);
    }
  }
  const bool slip = own && sums.moved && isBesideName(message, *sums.moved);
  return slip ? &movementOf(Move::transaction) : nullptr;
}

// Whether the wording with this index is "credited" in "credited to Asha Rao": the payment reached
// the other side.
bool creditsOther(const AnalysedMessage& message, std::size_t index) {
  const std::vector<Found>& wordings = message.wordings;
  if (!wordings[index].is(Move::credited) || index + 1 == wordings.size()) return false;
  const Found& next = wordings[index + 1];
  if (!next.is(Marker::to) || next.begin != wordings[index].end) return false;
  std::size_t at = next.end;
  bool bank = false;  // "credited to Heron Bank A/c 12" is the person's side
  for (; at < message.items.size() && message.items[at].named; ++at) {
    bank = bank || message.items[at].text == "bank";
  }
  const bool account = std::ranges::any_of(wordings, [at](const Found& wording) {
    return wording.begin == at && wording.is(Marker::own);
  });
  return at > next.end && !bank && !account;
}

// The movement whose words are directly in front of the sum that moved: "CR Amt: 15,600.00". Null
// without one.
const Movement* movementAtSum(const AnalysedMessage& message, std::size_t sum) {
  const Movement* movement = nullptr;
  for (const Found& wording : message.wordings) {
    if (wording.end > sum) break;
    const bool adjacent =
        std::all_of(message.items.begin() + static_cast<std::ptrdiff_t>(wording.end),
                    message.items.begin() + static_cast<std::ptrdiff_t>(sum),
                    [](const Item& item) { return isMark(item, ":.-=") || item.text.empty(); });
    const Move* const move = wording.as<Move>();
    if (adjacent && move != nullptr) movement = &movementOf(*move);
  }
  return movement;
}

}  // namespace

const Movement* reportedMovement(const AnalysedMessage& message, const SumParts& sums,
                                 bool openingDropped) {
  const Movement* movement = strongestMovement(message.wordings);
  if (movement != nullptr && movement->strength == Strength::verb && sums.moved) {
    const Movement* const beside = movementAtSum(message, *sums.moved);
    if (beside != nullptr && beside->strength == Strength::verb) movement = beside;
  }
  for (std::size_t index = 0; index < message.wordings.size(); ++index) {
    const bool told = movement != nullptr && movement->strength <= Strength::verb;
    if (told && creditsOther(message, index)) movement = &movementOf(Move::sent);
  }
  const bool weak = movement == nullptr || (sums.balance && movement->strength <= Strength::verb);
  if (weak && sums.moved && showsEvidence(message)) {
    const Movement* const signedOne = movementBySign(message.items[*sums.moved].sum);
    const bool agrees =
        movement != nullptr && signedOne != nullptr && movement->kind == signedOne->kind;
    if (signedOne != nullptr && !agrees) movement = signedOne;
  }
  if (movement == nullptr) movement = movementByPlace(message, sums);
  if (movement == nullptr && holds(message.wordings, SumRole::charge)) {
    movement = &movementOf(Move::fee);
  }
  // A message that opens with an announcement needs a verb to report a movement: "Your bill is
  // ready. Min payment ..." has none.
  const bool sure = movement != nullptr && movement->strength >= Strength::verb;
  return openingDropped && !sure ? nullptr : movement;
}

}  // namespace kivo::recognition
