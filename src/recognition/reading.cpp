#include "recognition/reading.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "recognition/account_and_reference.h"
#include "recognition/analysed_message.h"
#include "recognition/merchant_categories.h"
#include "recognition/message_items.h"
#include "recognition/moved_sum.h"
#include "recognition/movements.h"
#include "recognition/name_places.h"
#include "recognition/payee.h"
#include "recognition/payment_sentence.h"
#include "recognition/purpose.h"
#include "recognition/reported_movement.h"
#include "recognition/reported_part.h"
#include "recognition/spelling.h"
#include "recognition/stated_sums.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

using money::CurrencyCode;
using money::Kind;
using money::Money;

namespace {

AnalysedMessage analysed(std::string_view readable, Items items, const Wordings& wordings) {
  std::vector<Found> found = wordings.foundIn(items);
  return {.text = readable, .items = std::move(items), .wordings = std::move(found)};
}

bool holdsSum(const AnalysedMessage& message) {
  return std::ranges::any_of(message.items,
                             [](const Item& item) { return item.kind == Item::Kind::sum; });
}

// A login can be refused as well: only a message with a sum is about a payment.
bool isRefused(const AnalysedMessage& whole, const AnalysedMessage& reported,
               const Movement* movement) {
  if (!holds(reported.wordings, Status::declined)) return false;
  if (movement != nullptr) return movement->strength < Strength::refund;
  return holdsSum(whole);
}

// Absent when the amount can be read in two ways.
std::optional<Money> moneyOf(const Sum& sum, const CurrencyCode& bookCurrency) {
  if (!sum.minorUnits) return std::nullopt;
  return Money{.minorUnits = *sum.minorUnits,
               .currency = CurrencyCode::fromText(sum.currency).value_or(bookCurrency)};
}

// Whether a minus stands before the number of `sum` or before its currency, after a blank:
// "balance: -EGP 5.00", "EGP -5.00". A hyphen without one divides: "Bal:-Rs 5", "Bal Rs-5".
bool isBelowZero(std::string_view text, const Item& sum) {
  for (std::size_t at = std::max<std::size_t>(sum.begin, 2) - 1; at + 1 < sum.end; ++at) {
    if (text[at] == '-' && text[at - 1] == ' ' && text[at + 1] != ' ') return true;
  }
  return false;
}

std::optional<Money> balanceOf(const AnalysedMessage& message, const Item& sum,
                               const CurrencyCode& bookCurrency) {
  auto balance = moneyOf(sum.sum, bookCurrency);
  if (balance && isBelowZero(message.text, sum)) balance->minorUnits = -balance->minorUnits;
  return balance;
}

std::string categoryOf(const Movement& movement, const Movement& named, const std::string& payee) {
  // A fee beside a payment to somebody does not name the payment.
  const Movement& naming = named.move == Move::fee && !payee.empty() ? movement : named;
  // Cash is cash wherever the machine is, in a mall or at a petrol station.
  const bool fixed = naming.kind != Kind::expense || payee.empty() || naming.category == "Cash";
  std::string_view category = fixed                           ? std::string_view()
                              : naming.category == "Transfer" ? recipientCategory(payee)
                                                              : merchantCategory(payee);
  if (category.empty()) category = naming.category;
  return std::string(category.empty() ? "Other" : category);
}

// A sum beside a balance, without a wording of a movement.
Reading unexplained(const Sum& sum, const CurrencyCode& bookCurrency) {
  return {.outcome = Outcome::needsReview,
          .amount = moneyOf(sum, bookCurrency),
          .description = "Payment",
          .category = "Other"};
}

// Whether the money was withdrawn in cash. "Withdrawn" may also report a purchase, and so may a
// card whose name says that it is for cash machines.
bool isWithdrawal(const AnalysedMessage& message, const Movement& movement,
                  const Movement& naming) {
  const bool bought =
      holds(message.wordings, Move::purchase) || holds(message.wordings, Move::spent);
  const bool cash = naming.move != Move::machine || movement.category == "Cash";
  return naming.category == "Cash" && cash && !bought;
}

// The transaction that the message reports by `movement`; one of `sums` moved. The caller decides
// whether it needs a review.
Reading details(const AnalysedMessage& message, const SumParts& sums, const Movement& movement,
                const Wordings& wordings, const CurrencyCode& bookCurrency) {
  const Movement& naming = namingMovement(message.wordings, movement);
  Reading reading{.outcome = Outcome::transaction, .kind = movement.kind};
  reading.amount = moneyOf(message.items[*sums.moved].sum, bookCurrency);
  if (sums.balance) {
    reading.balance = balanceOf(message, message.items[*sums.balance], bookCurrency);
  }
  const bool other = movement.kind != Kind::transfer;
  if (other) {
    reading.payee = isWithdrawal(message, movement, naming) ? agentIn(message)
                                                            : payeeIn(message, movement.kind);
  }
  reading.description = reading.payee.empty() ? naming.description : reading.payee;
  reading.category = categoryOf(movement, naming, reading.payee);
  const bool salary = movement.kind == Kind::income && movement.move != Move::refund &&
                      !reading.payee.empty() && speaksOfSalary(message);
  if (salary) reading.category = "Salary";
  if (other && reading.payee.empty()) {
    Purpose purpose = purposeOf(message, naming);
    if (!purpose.description.empty()) reading.description = std::move(purpose.description);
    if (!purpose.category.empty()) reading.category = purpose.category;
  }
  reading.account = ownAccount(message, movement.kind);
  reading.refund = movement.move == Move::refund;
  reading.incoming = movement.kind == Kind::income ||
                     (!other && reachesAccount(message, reading.account, wordings));
  reading.reference = referenceIn(message);
  return reading;
}

// Whether the sentence of the sum that moved reports a payment, and another one gives it back: "You
// paid EGP 5.00 to Fern. Refunded!" A name may forge the other one.
bool isGivenBackElsewhere(const AnalysedMessage& message, const SumParts& sums,
                          const Movement& movement) {
  if (movement.strength != Strength::refund) return false;
  for (const Sentence& sentence : sentencesOf(message)) {
    if (*sums.moved < sentence.begin || *sums.moved >= sentence.end) continue;
    const Movement* const beside = strongestMovement(sentence.wordings);
    return beside != nullptr && beside->strength == Strength::verb && beside->kind == Kind::expense;
  }
  return false;
}

// The reading of `whole`, which announces no code; without `holdsSum`.
Reading readingOf(const AnalysedMessage& whole, const Wordings& wordings,
                  const CurrencyCode& bookCurrency) {
  Items kept = reportedPart(whole);
  const bool all = kept.size() == whole.items.size();
  const AnalysedMessage reported = all ? whole : analysed(whole.text, std::move(kept), wordings);
  const SumParts sums = partsOfSums(reported, bookCurrency.text());
  const bool openingDropped =
      reported.items.empty() || reported.items.front().begin != whole.items.front().begin;
  const Movement* const movement = reportedMovement(reported, sums, openingDropped);
  if (isRefused(whole, reported, movement)) return {.outcome = Outcome::declined};
  if (!sums.moved) return {};
  if (movement == nullptr) {
    const bool complete = reported.items.size() == whole.items.size() && sums.balance;
    return complete ? unexplained(reported.items[*sums.moved].sum, bookCurrency) : Reading();
  }

  Reading reading = details(reported, sums, *movement, wordings, bookCurrency);
  const bool own = reading.amount && reading.amount->currency == bookCurrency;
  const bool evidence = showsEvidence(reported);
  const bool weak = movement->strength <= Strength::noun;
  // "You paid EGP 50.00 at Tulip Store. Enjoy 10% off next time!" reports a payment beside an
  // offer.
  const bool apart = !weak && !reading.payee.empty() && !holds(reported.wordings, Status::offer);
  if (holds(whole.wordings, Status::offer) && !evidence && !apart) return {};
  // A noun ("payment", "transfer") without a payee may also be about a plan.
  const bool done = holds(reported.wordings, Status::done);
  const bool vague = weak && !evidence && !done && reading.payee.empty();
  const bool doubtful = sums.unclear || isGivenBackElsewhere(reported, sums, *movement);
  if (doubtful || !own || vague) reading.outcome = Outcome::needsReview;
  return reading;
}

// Whether a wording, a sum or the end of a sentence is in the place of a name. Without one, the
// wordings of the message stay.
bool hidesMeaning(const AnalysedMessage& message, const NamePlace& place) {
  for (std::size_t at = place.begin; at < place.lastEnd; ++at) {
    const Item& item = message.items[at];
    if (item.kind == Item::Kind::sum || (at > place.begin && item.startsSentence)) return true;
  }
  return std::ranges::any_of(message.wordings, [&](const Found& wording) {
    return wording.begin < place.lastEnd && std::max(wording.end, wording.begin + 1) > place.begin;
  });
}

// One reading for a message whose two readings differ by where a name ends: for review when they
// disagree about the movement.
Reading agreed(Reading one, Reading other) {
  const auto moves = [](const Reading& reading) {
    return reading.outcome == Outcome::transaction || reading.outcome == Outcome::needsReview;
  };
  const bool agree =
      one.outcome == other.outcome && one.kind == other.kind && one.amount == other.amount;
  if (agree || (!moves(one) && !moves(other))) return one;
  Reading reading = moves(one) ? std::move(one) : std::move(other);
  reading.outcome = Outcome::needsReview;
  return reading;
}

// Whether a sum that may be part of the name at `place` is `amount`: it is not to be proposed.
bool mayName(const AnalysedMessage& message, const NamePlace& place,
             const std::optional<Money>& amount) {
  return std::any_of(
      message.items.begin() + static_cast<std::ptrdiff_t>(place.end),
      message.items.begin() + static_cast<std::ptrdiff_t>(place.lastEnd), [&](const Item& item) {
        return item.kind == Item::Kind::sum && amount && item.sum.minorUnits == amount->minorUnits;
      });
}

// The reading of `whole`, whose names are marked.
Reading readNamed(const AnalysedMessage& whole, const Wordings& wordings,
                  const CurrencyCode& bookCurrency) {
  if (announcesACode(whole)) return {};
  Reading reading = readingOf(whole, wordings, bookCurrency);
  const bool isLeft =
      reading.outcome == Outcome::declined || reading.outcome == Outcome::notATransaction;
  reading.holdsSum = isLeft && holdsSum(whole);
  return reading;
}

}  // namespace

std::string_view partThatCounts(std::string_view text) {
  return text.substr(0, wholeCharacters(text, longestMessage));
}

Reading read(std::string_view text, const CurrencyCode& bookCurrency) {
  return readBy(Wordings::all(), text, bookCurrency);
}

Reading readBy(const Wordings& wordings, std::string_view text, const CurrencyCode& bookCurrency) {
  text = partThatCounts(text);
  if (auto payment = paymentSentence(text, bookCurrency)) return *payment;

  const std::string readable = readableForm(text);
  const AnalysedMessage plain =
      analysed(readable, withSums(itemsOf(readable), bookCurrency.text(), wordings), wordings);
  const std::vector<NamePlace> places = namePlaces(plain);
  if (places.empty()) return readNamed(plain, wordings, bookCurrency);
  const bool hides = std::ranges::any_of(
      places, [&](const NamePlace& place) { return hidesMeaning(plain, place); });
  const auto readWith = [&](NameEnd counts) {
    Items items = withNames(plain.items, places, counts);
    const AnalysedMessage named =
        hides ? analysed(readable, std::move(items), wordings)
              : AnalysedMessage{
                    .text = readable, .items = std::move(items), .wordings = plain.wordings};
    return readNamed(named, wordings, bookCurrency);
  };
  Reading first = readWith(NameEnd::first);
  if (std::ranges::all_of(places,
                          [](const NamePlace& place) { return place.end == place.lastEnd; })) {
    return first;
  }
  Reading reading = agreed(std::move(first), readWith(NameEnd::last));
  const bool doubtful = std::ranges::any_of(
      places, [&](const NamePlace& place) { return mayName(plain, place, reading.amount); });
  if (reading.outcome == Outcome::needsReview && doubtful) reading.amount.reset();
  return reading;
}

}  // namespace kivo::recognition
