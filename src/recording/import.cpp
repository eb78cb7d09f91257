#include "recording/import.h"

#include <utility>

namespace kivo::recording {

using recognition::Outcome;

namespace {

// A commit costs an fsync; a step holds up the messages that arrive meanwhile.
constexpr std::size_t messagesInStep = 2'000;

// The count to which a message that was read so belongs.
std::int64_t& countOf(ImportCounts& counts, const BookReading& reading) {
  if (reading.reading.outcome == Outcome::declined) return counts.declined;
  if (!isTransaction(reading)) return counts.ignored;
  book::LedgerEntry entry;
  apply(reading, entry);
  return entry.state == book::LedgerEntry::State::booked ? counts.booked : counts.review;
}

}  // namespace

std::int64_t ImportCounts::messages() const { return booked + review + ignored + declined + known; }

ImportCounts& ImportCounts::operator+=(const ImportCounts& other) {
  booked += other.booked;
  review += other.review;
  ignored += other.ignored;
  declined += other.declined;
  known += other.known;
  return *this;
}

Import::Import(book::Book& book, Settings settings)
    : book_(&book),
      settings_(std::move(settings)),
      known_(book, settings_.userId, settings_.importKeys) {}

bool Import::isKnownByKey(const Message& message) const {
  return keysTaken_.contains(message.idempotencyKey) ||
         book_->answer(message.userId, message.idempotencyKey).has_value();
}

void Import::expect(const Message& message) {
  if (!known_.hasText(message.text) || isKnownByKey(message)) return;
  if (!keysExpected_.insert(message.idempotencyKey).second) return;
  known_.expect(message.text, message.expenseDate);
}

void Import::add(Message message) {
  waiting_.push_back(std::move(message));
  if (waiting_.size() >= messagesInStep) finish();
}

void Import::finish() {
  if (waiting_.empty()) return;
  ImportCounts counts;
  const auto recordAll = [&] {
    for (const Message& message : waiting_) recordOne(message, counts);
  };
  if (settings_.mode == Mode::record) {
    book_->asCommand(settings_.command, recordAll);
  } else {
    book_->atOneMoment(recordAll);
  }
  counts_ += counts;
  waiting_.clear();
}

// Of a message whose text was erased the answer tells, which has the description that the book gave
// the payment.
bool Import::cameLive(const Message& message, const BookReading& reading) {
  if (!isTransaction(reading) || !known_.hasErasedOf(message.expenseDate)) return false;
  return known_.accountsForErased(fittedEntry(*book_, reading, message));
}

void Import::recordOne(const Message& message, ImportCounts& counts) {
  if (isKnownByKey(message)) {
    ++counts.known;
    return;
  }
  if (known_.accountsFor(message.text, message.expenseDate)) {
    keysTaken_.insert(message.idempotencyKey);
    ++counts.known;
    return;
  }
  const BookReading reading = readingFor(*book_, settings_.read, message.text, settings_.currency);
  if (cameLive(message, reading)) {
    keysTaken_.insert(message.idempotencyKey);
    ++counts.known;
    return;
  }
  ++countOf(counts, reading);
  if (settings_.mode == Mode::record) {
    recordAs(*book_, reading, message);
  } else {
    keysTaken_.insert(message.idempotencyKey);
  }
}

}  // namespace kivo::recording
