// Book::record and its steps.
#include <limits>

#include "extraction/sms_extraction_response.h"
#include "ledger/book.h"
#include "ledger/book_file.h"
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

SMSExtractionResponse responseTo(const LedgerEntry& entry) {
  if (entry.state == LedgerEntry::State::review) return {.saved = false, .reason = "needs_review"};
  return {.saved = true,
          .transaction_type = kindText(entry.kind),
          .expense = SMSExtractionResponse::SavedExpense{
              .id = std::to_string(entry.id),
              .description = entry.description,
              .amount = platform::doubleFromText(amountText(*entry.amount)).value(),
              .category = entry.category,
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

// Applies the user's earlier corrections for this payee.
void Book::correct(LedgerEntry& entry) const {
  if (entry.payee.empty()) return;
  Statement query(database_.get(), "SELECT description, category FROM corrections WHERE payee = ?");
  if (!next(query.bind(entry.payee))) return;
  if (!query.text(0).empty()) entry.description = query.text(0);
  if (!query.text(1).empty()) entry.category = query.text(1);
}

void Book::markLookAlike(LedgerEntry& entry, const std::string& userId) const {
  Statement query(database_.get(), R"(
    SELECT min(id) FROM (
      SELECT id FROM transactions WHERE date = ? AND minor_units = ? AND currency = ? AND kind = ?
        AND payee = ? COLLATE NOCASE AND user = ?
      UNION ALL
      SELECT id FROM transactions WHERE reference <> '' AND reference = ? AND user = ?)
    WHERE id < ?)");
  // -1 matches no entry: an absent amount is no duplicate of another.
  query.bind(entry.date).bind(entry.amount ? entry.amount->minorUnits : -1);
  query.bind(entry.amount ? std::string_view(entry.amount->currency) : "")
      .bind(kindText(entry.kind));
  query.bind(entry.payee).bind(userId).bind(entry.reference).bind(userId);
  constexpr auto all = std::numeric_limits<std::int64_t>::max();
  query.bind(entry.id == 0 ? all : entry.id);  // a new entry has no id yet
  if (next(query) && !query.isNull(0)) entry.possibleDuplicateOf = query.integer(0);
}

void Book::insert(LedgerEntry& entry, const std::string& userId) const {
  Statement insertion(database_.get(), R"(
    INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, category,
      payee, account, reference, state, possible_duplicate_of, text)
    VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id)");
  insertion.bind(userId).bind(entry.key).bind(entry.date).bind(kindText(entry.kind));
  insertion.bindIfPresent(entry.amount ? std::optional(entry.amount->minorUnits) : std::nullopt);
  insertion.bind(entry.amount ? std::string_view(entry.amount->currency) : "");
  insertion.bind(entry.description).bind(entry.category).bind(entry.payee).bind(entry.account);
  insertion.bind(entry.reference).bind(stateText(entry.state));
  insertion.bindIfPresent(entry.possibleDuplicateOf);
  insertion.bind(*entry.text);
  if (!next(insertion)) throw BookFailure(insertion.code());
  entry.id = insertion.integer(0);
  run(insertion);
}

}  // namespace kivo::ledger
