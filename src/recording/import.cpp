#include "recording/import.h"

#include <atomic>
#include <future>
#include <thread>
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
  const Readings readings = readWaiting();
  const auto recordAll = [&] {
    for (std::size_t place = 0; place < waiting_.size(); ++place) {
      recordOne(waiting_[place], readings[place], counts);
    }
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

// Reads the messages that are not known by their keys, on all processors: reading takes most of the
// time of an import.
Import::Readings Import::readWaiting() const {
  Readings readings(waiting_.size());
  std::vector<std::size_t> unknown;
  book_->atOneMoment([&] {
    for (std::size_t place = 0; place < waiting_.size(); ++place) {
      if (!isKnownByKey(waiting_[place])) unknown.push_back(place);
    }
  });
  std::atomic<std::size_t> next = 0;
  const auto readSome = [&] {
    for (std::size_t at = next++; at < unknown.size(); at = next++) {
      readings[unknown[at]] = settings_.read(waiting_[unknown[at]].text, settings_.currency);
    }
  };
  std::vector<std::future<void>> others;
  for (unsigned count = 1; count < std::thread::hardware_concurrency(); ++count) {
    others.push_back(std::async(std::launch::async, readSome));
  }
  readSome();
  for (auto& other : others) other.get();
  return readings;
}

void Import::recordOne(const Message& message, const std::optional<recognition::Reading>& read,
                       ImportCounts& counts) {
  if (isKnownByKey(message)) {
    ++counts.known;
    return;
  }
  if (known_.accountsFor(message.text, message.expenseDate)) {
    keysTaken_.insert(message.idempotencyKey);
    ++counts.known;
    return;
  }
  const MessageReader reader = [&](std::string_view text, const money::CurrencyCode& currency) {
    return read && currency == settings_.currency ? *read : settings_.read(text, currency);
  };
  const BookReading reading =
      readingFor(*book_, reader, message.text, message.expenseDate, settings_.currency);
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
