#include "recording/recording.h"

#include "extraction/sms_extraction_response.h"
#include "platform/foundation/number_text.h"
#include "recognition/payment_sentence.h"

namespace kivo::recording {
namespace {

using book::LedgerEntry;
using recognition::Outcome;
using recognition::Reading;

LedgerEntry entryFrom(const BookReading& reading, const Message& message) {
  LedgerEntry entry;
  entry.key = message.idempotencyKey;
  entry.userId = message.userId;
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
  if (entry.kind != money::Kind::transfer || entry.category == uncountedToo) return entry.category;
  const bool isItsSentence =
      recognition::paymentSentence(*entry.text, entry.amount->currency).has_value();
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
              .expense_date = entry.date.text()}};
}

// Keeps a message that is not booked but holds a sum, as far as it was read.
void keepIgnored(book::Book& book, const Reading& reading, const Message& message) {
  using Reason = book::IgnoredMessage::Reason;
  const bool wasDeclined = reading.outcome == Outcome::declined;
  book.keepIgnored({.key = message.idempotencyKey,
                    .userId = message.userId,
                    .date = message.expenseDate,
                    .reason = wasDeclined ? Reason::declined : Reason::notATransaction,
                    .text = std::string(recognition::partThatCounts(message.text))});
}

}  // namespace

LedgerEntry fittedEntry(const book::Book& book, const BookReading& read, const Message& message) {
  return book.fitted(entryFrom(read, message));
}

Recorded recordAs(book::Book& book, const BookReading& read, const Message& message) {
  const Reading& reading = read.reading;
  Recorded recorded;
  SMSExtractionResponse response{.saved = false, .reason = "not_a_transaction"};
  if (reading.outcome == Outcome::declined) response.reason = "declined";
  if (isTransaction(read)) {
    recorded.entry = fittedEntry(book, read, message);
    recorded.entry->id = book.add(*recorded.entry);
    response = responseTo(*recorded.entry);
  } else if (reading.holdsSum) {
    keepIgnored(book, reading, message);
  }
  recorded.answer = response.encode();
  book.keepAnswer(message.userId, message.idempotencyKey, recorded.answer);
  return recorded;
}

Recorded record(book::Book& book, const Message& message, const MessageReader& read,
                const money::CurrencyCode& currency) {
  const auto known = [&] { return book.answer(message.userId, message.idempotencyKey); };
  if (auto answer = known()) return {*std::move(answer)};
  const BookReading reading = readingFor(book, read, message.text, message.expenseDate, currency);
  Recorded recorded;
  book.inOneStep([&] {
    auto answer = known();  // of another process that was faster
    recorded = answer ? Recorded{*std::move(answer)} : recordAs(book, reading, message);
  });
  return recorded;
}

}  // namespace kivo::recording
