// Book::record and its steps.
#include "extraction/sms_extraction_response.h"
#include "ledger/book.h"
#include "ledger/book_categories.h"
#include "ledger/book_file.h"
#include "ledger/recognition/payment_sentence.h"
#include "names/name_fold.h"
#include "platform/foundation/number_text.h"

namespace kivo::ledger {
namespace {

using linux_platform::Statement;
using linux_platform::Transaction;

LedgerEntry entryFrom(const Reading& reading, const Message& message) {
  LedgerEntry entry;
  entry.key = message.idempotencyKey;
  entry.date = message.expenseDate;
  apply(reading, entry);
  entry.text = message.text;
  return entry;
}

// The category of a transfer in an answer to the expense intent, which knows by the category alone
// that a payment is not to be counted. Other answers and the book have the entry's own.
std::string answeredCategory(const LedgerEntry& entry) {
  constexpr std::string_view uncounted = "__system_transfer__";
  constexpr std::string_view uncountedToo = "Credit Card Settlement";
  if (entry.kind != Kind::transfer || entry.category == uncountedToo) return entry.category;
  const bool isItsSentence = paymentSentence(*entry.text, entry.amount->currency).has_value();
  return isItsSentence ? std::string(uncounted) : entry.category;
}

SMSExtractionResponse responseTo(const LedgerEntry& entry) {
  if (entry.state == LedgerEntry::State::review) return {.saved = false, .reason = "needs_review"};
  return {.saved = true,
          .transaction_type = kindText(entry.kind),
          .expense = SMSExtractionResponse::SavedExpense{
              .id = std::to_string(entry.id),
              .description = entry.description,
              .amount = platform::doubleFromText(amountText(*entry.amount)).value(),
              .category = answeredCategory(entry),
              .expense_date = entry.date}};
}

}  // namespace

Recorded Book::record(const Message& message, const std::string& currency) {
  if (auto known = answerTo(message)) return {*std::move(known), std::nullopt};
  const Reading reading = readingOf(message.text, currency);

  Transaction transaction(database_.get());
  require(transaction.code());
  if (auto known = answerTo(message))
    return {*std::move(known), std::nullopt};  // another process was faster
  std::optional<LedgerEntry> entry;
  SMSExtractionResponse response{.saved = false, .reason = "not_a_transaction"};
  if (reading.outcome == Outcome::declined) response.reason = "declined";
  if (reading.outcome == Outcome::transaction || reading.outcome == Outcome::needsReview) {
    entry = entryFrom(reading, message);
    correct(*entry);
    entry->category = keepCategory(database_.get(), entry->category);
    markLookAlike(*entry, message.userId);
    insert(*entry, message.userId);
    response = responseTo(*entry);
  }
  std::string answer = response.encode();
  Statement keeping(database_.get(), "INSERT INTO answers VALUES (?, ?, ?)");
  run(keeping.bind(message.userId).bind(message.idempotencyKey).bind(answer));
  require(transaction.commit());
  return {std::move(answer), std::move(entry)};
}

std::optional<std::string> Book::answerTo(const Message& message) const {
  Statement query(database_.get(), "SELECT answer FROM answers WHERE user = ? AND key = ?");
  if (!next(query.bind(message.userId).bind(message.idempotencyKey))) return std::nullopt;
  return query.text(0);
}

// A message that is in review only for its currency is read again in that currency, and converted
// when a rate is set and the result is bookable.
Reading Book::readingOf(const std::string& text, const std::string& currency) const {
  Reading reading = reader_(text, currency);
  if (reading.outcome != Outcome::needsReview || !reading.amount ||
      reading.amount->currency == currency) {
    return reading;
  }
  Reading foreign = reader_(text, reading.amount->currency);
  if (foreign.outcome != Outcome::transaction || foreign.amount != reading.amount) return reading;
  const auto set = rate(foreign.amount->currency);
  if (!set) return reading;
  foreign.amount = set->convert(*foreign.amount, currency);
  return foreign.amount ? foreign : reading;
}

void Book::insert(LedgerEntry& entry, const std::string& userId) const {
  Statement insertion(database_.get(), R"(
    INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, category,
      payee, folded_payee, account, reference, state, possible_duplicate_of, text)
    VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id)");
  const std::string folded = names::foldedName(entry.payee);
  insertion.bind(userId).bind(entry.key).bind(entry.date).bind(kindText(entry.kind));
  insertion.bindIfPresent(entry.amount ? std::optional(entry.amount->minorUnits) : std::nullopt);
  insertion.bind(entry.amount ? std::string_view(entry.amount->currency) : "");
  insertion.bind(entry.description).bind(entry.category).bind(entry.payee).bind(folded);
  insertion.bind(entry.account).bind(entry.reference).bind(stateText(entry.state));
  insertion.bindIfPresent(entry.possibleDuplicateOf);
  insertion.bind(*entry.text);
  if (!next(insertion)) throw BookFailure(insertion.code());
  entry.id = insertion.integer(0);
  run(insertion);
}

}  // namespace kivo::ledger
