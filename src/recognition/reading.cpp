#include "recognition/reading.h"

#include <algorithm>
#include <vector>

#include "recognition/account_and_reference.h"
#include "recognition/merchant_categories.h"
#include "recognition/message_items.h"
#include "recognition/moved_sum.h"
#include "recognition/movements.h"
#include "recognition/payee.h"
#include "recognition/payment_sentence.h"
#include "recognition/reported_part.h"
#include "recognition/spelling.h"
#include "recognition/stated_sums.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

using money::Kind;
using money::Money;

namespace {

using AllFound = std::vector<Found>;

bool holds(std::span<const Found> found, Meaning meaning) {
  return std::any_of(found.begin(), found.end(),
                     [meaning](const Found& wording) { return wording.meaning == meaning; });
}

// A login can be refused as well: only a message with a sum is about a payment.
bool isRefused(const Items& all, std::span<const Found> found, const Movement* movement) {
  if (!holds(found, Meaning::declined)) return false;
  if (movement != nullptr) return movement->strength < Strength::refund;
  return std::any_of(all.begin(), all.end(),
                     [](const Item& item) { return item.kind == Item::Kind::sum; });
}

// "-250,000VND ... SD: 3,110,000VND": beside evidence the sign of a sum tells its direction.
const Movement* movementBySign(const Sum& sum) {
  if (sum.sign == '-') return movementOf(Meaning::debit);
  return sum.sign == '+' ? movementOf(Meaning::credit) : nullptr;
}

// Whether the item behind the wording `found[index]` is a word of no other wording: a name.
bool namesSomebody(const Items& items, std::span<const Found> found, std::size_t index) {
  const std::size_t behind = found[index].end;
  if (behind >= items.size() || items[behind].kind != Item::Kind::word) return false;
  return index + 1 == found.size() || found[index + 1].begin != behind;
}

// "Card 1199 | AED 52.00 | GREEN GROCER | Approved", "Card **2201: KWD 6.500 at PIZZA LAND",
// "£12.00 at Fern Café. Balance £88.00", "$15.00 to Asha Rao on 5-11 from a/c 12": without a word
// for the movement, the other party's place tells the direction.
const Movement* movementByPlace(const Items& items, std::span<const Found> found) {
  if (holds(found, Meaning::own) && holds(found, Meaning::done)) {
    return movementOf(Meaning::transaction);
  }
  if (!holds(found, Meaning::limit) && !showsEvidence(items, found)) return nullptr;
  const bool own = holds(found, Meaning::own);
  for (std::size_t index = 0; index < found.size(); ++index) {
    const Meaning meaning = found[index].meaning;
    const bool out = meaning == Meaning::at || meaning == Meaning::to;
    const bool in = meaning == Meaning::from && own;
    if (!out && !in) continue;
    if (namesSomebody(items, found, index)) {
      return movementOf(out ? Meaning::transaction : Meaning::transferIn);
    }
  }
  return nullptr;
}

// Absent when the digits can be read in two ways.
std::optional<Money> moneyOf(const Sum& sum, std::string_view bookCurrency) {
  if (!sum.minorUnits) return std::nullopt;
  return Money{.minorUnits = *sum.minorUnits,
               .currency = sum.currency.empty() ? std::string(bookCurrency) : sum.currency};
}

std::string categoryOf(const Movement& naming, const std::string& payee) {
  // Cash is cash wherever the machine is, in a mall or at a petrol station.
  const bool fixed = naming.kind != Kind::expense || payee.empty() || naming.category == "Cash";
  std::string_view category = fixed                           ? std::string_view()
                              : naming.category == "Transfer" ? recipientCategory(payee)
                                                              : merchantCategory(payee);
  if (category.empty()) category = naming.category;
  return std::string(category.empty() ? "Other" : category);
}

// The movement that the message reports; null for none.
const Movement* movementIn(const Items& items, const AllFound& found, const SumParts& sums,
                           bool begunToCome) {
  const Movement* movement = strongestMovement(found);
  const bool weak = movement == nullptr || (sums.balance && movement->strength <= Strength::verb);
  if (weak && sums.moved && showsEvidence(items, found)) {
    const Movement* const signedOne = movementBySign(items[*sums.moved].sum);
    const bool agrees =
        movement != nullptr && signedOne != nullptr && movement->kind == signedOne->kind;
    if (signedOne != nullptr && !agrees) movement = signedOne;
  }
  if (movement == nullptr) movement = movementByPlace(items, found);
  if (movement == nullptr && holds(found, Meaning::charge)) movement = movementOf(Meaning::fee);
  // A message that opens with what is to come needs a verb to report a movement: "Your bill is
  // ready. Min payment ..." has none.
  const bool sure = movement != nullptr && movement->strength >= Strength::verb;
  return begunToCome && !sure ? nullptr : movement;
}

// A sum beside a balance, which no wording explains.
Reading unexplained(const Sum& sum, std::string_view bookCurrency) {
  return {.outcome = Outcome::needsReview,
          .amount = moneyOf(sum, bookCurrency),
          .description = "Payment",
          .category = "Other"};
}

// The transaction that the message reports as `movement`. The caller decides whether a person has
// to look at it. `sums` have one that moved.
Reading details(std::string_view readable, const Items& items, std::span<const Found> found,
                const SumParts& sums, const Movement& movement, std::string_view bookCurrency) {
  const Movement& naming = namingMovement(found, movement);
  Reading reading{.outcome = Outcome::transaction, .kind = movement.kind};
  reading.amount = moneyOf(items[*sums.moved].sum, bookCurrency);
  if (sums.balance) reading.balance = moneyOf(items[*sums.balance].sum, bookCurrency);
  const bool other = movement.kind != Kind::transfer;
  if (other) reading.payee = payeeIn(readable, items, found, movement.kind);
  reading.description = reading.payee.empty() ? naming.description : reading.payee;
  reading.category = categoryOf(naming, reading.payee);
  reading.account = ownAccount(items, found, movement.kind);
  reading.reference = referenceIn(items, found, readable);
  return reading;
}

}  // namespace

std::string_view partThatCounts(std::string_view text) {
  return text.substr(0, wholeCharacters(text, longestMessage));
}

Reading read(std::string_view text, std::string_view bookCurrency) {
  return readBy(Wordings::all(), text, bookCurrency);
}

Reading readBy(const Wordings& wordings, std::string_view text, std::string_view bookCurrency) {
  text = partThatCounts(text);
  if (auto payment = paymentSentence(text, bookCurrency)) return *payment;

  const std::string readable = readableForm(text);
  const Items all = withSums(itemsOf(readable), bookCurrency, wordings);
  const AllFound said = wordings.foundIn(all);
  if (announcesACode(all, said)) return {};

  const Items items = reportedPart(all, said);
  const AllFound found = wordings.foundIn(items);
  const SumParts sums = partsOfSums(items, found, bookCurrency);
  const bool begunToCome = items.empty() || items.front().begin != all.front().begin;
  const Movement* const movement = movementIn(items, found, sums, begunToCome);
  if (isRefused(all, found, movement)) return {.outcome = Outcome::declined};
  if (!sums.moved) return {};
  if (movement == nullptr) {
    const bool reported = items.size() == all.size() && sums.balance;
    return reported ? unexplained(items[*sums.moved].sum, bookCurrency) : Reading();
  }

  Reading reading = details(readable, items, found, sums, *movement, bookCurrency);
  const bool own = reading.amount && reading.amount->currency == bookCurrency;
  const bool evidence = showsEvidence(items, found);
  const bool weak = movement->strength <= Strength::noun;
  // "You paid EGP 50.00 at Tulip Store. Enjoy 10% off next time!" reports a payment nevertheless.
  const bool apart = !weak && !reading.payee.empty() && !holds(found, Meaning::offer);
  if (holds(said, Meaning::offer) && !evidence && !apart) return {};
  // A noun ("payment", "transfer") without a payee could as well be about a plan.
  const bool vague = weak && !evidence && reading.payee.empty();
  if (sums.unclear || !own || vague) reading.outcome = Outcome::needsReview;
  return reading;
}

}  // namespace kivo::recognition
