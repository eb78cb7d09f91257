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

std::vector<std::optional<recognition::Reading>> readAll(
    const std::vector<std::optional<std::string>>& texts, const MessageReader& read,
    const money::CurrencyCode& currency) {
  std::vector<std::optional<recognition::Reading>> readings(texts.size());
  for (std::size_t place = 0; place < texts.size(); ++place) {
    if (texts[place]) readings[place] = read(*texts[place], currency);
  }
  return readings;
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
  if (waiting_.size() >= messagesInStep) recordWhileReading();
}

void Import::finish() {
  recordWhileReading();
  recordWhileReading();
}

// Another thread reads the messages that wait while this one records those before them: to read
// messages takes about half of the time that the rest of an import takes.
void Import::recordWhileReading() {
  std::optional<Step> next;
  if (!waiting_.empty()) next = beginReading();
  if (auto step = std::exchange(reading_, std::nullopt)) record(*std::move(step));
  reading_ = std::move(next);
}

// Messages that are known by their keys are not read.
Import::Step Import::beginReading() {
  Step step{.messages = std::exchange(waiting_, {})};
  std::vector<std::optional<std::string>> texts;
  book_->atOneMoment([&] {
    for (const Message& message : step.messages) {
      texts.push_back(isKnownByKey(message) ? std::nullopt : std::optional(message.text));
    }
  });
  step.readings =
      std::async(std::launch::async, readAll, std::move(texts), settings_.read, settings_.currency);
  return step;
}

void Import::record(Step step) {
  const Readings readings = step.readings.get();
  ImportCounts counts;
  const auto recordAll = [&] {
    for (std::size_t place = 0; place < step.messages.size(); ++place) {
      recordOne(step.messages[place], readings[place], counts);
    }
  };
  if (settings_.mode == Mode::record) {
    book_->asCommand(settings_.command, recordAll);
  } else {
    book_->atOneMoment(recordAll);
  }
  counts_ += counts;
}

// Of a message whose text was erased the answer tells, which has the description that the book gave
// the payment.
bool Import::cameLive(const Message& message, const BookReading& reading) {
  if (!isTransaction(reading) || !known_.hasErasedOf(message.expenseDate)) return false;
  return known_.accountsForErased(fittedEntry(*book_, reading, message));
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
