#include "recording/message_reading.h"

#include <utility>

#include "recognition/merchant_categories.h"

namespace kivo::recording {

using book::LedgerEntry;
using recognition::Outcome;
using recognition::Reading;

bool isTransaction(const BookReading& read) {
  return read.reading.outcome == Outcome::transaction ||
         read.reading.outcome == Outcome::needsReview;
}

BookReading readingFor(const book::Book& book, const MessageReader& read, const std::string& text,
                       const money::Day& day, const money::CurrencyCode& currency) {
  Reading reading = read(text, currency);
  if (reading.outcome != Outcome::needsReview || !reading.amount ||
      reading.amount->currency == currency) {
    return {reading};
  }
  Reading foreign = read(text, reading.amount->currency);
  if (foreign.outcome != Outcome::transaction || foreign.amount != reading.amount) {
    return {reading};
  }
  const auto rate = book.rate(foreign.amount->currency, day);
  if (!rate) return {reading};
  foreign.amount = rate->convert(*foreign.amount, currency);
  if (!foreign.amount) return {reading};
  return {std::move(foreign), reading.amount};
}

void apply(const BookReading& read, LedgerEntry& entry) {
  const Reading& reading = read.reading;
  entry.kind = reading.kind;
  entry.refund = reading.kind == money::Kind::income && reading.refund;
  entry.incoming = reading.kind == money::Kind::income ||
                   (reading.kind == money::Kind::transfer && reading.incoming);
  entry.amount = reading.amount && isBookable(*reading.amount) ? reading.amount : std::nullopt;
  entry.original = read.original;
  entry.balance = reading.balance;
  entry.description = reading.description;
  entry.category = reading.category;
  if (entry.refund && entry.category == "Refund") {
    const auto bought = recognition::merchantCategory(reading.payee);
    if (!bought.empty()) entry.category = bought;
  }
  entry.payee = reading.payee;
  entry.account = reading.account;
  entry.reference = reading.reference;
  const bool isClear = reading.outcome == Outcome::transaction && entry.amount;
  entry.state = isClear ? LedgerEntry::State::booked : LedgerEntry::State::review;
}

}  // namespace kivo::recording
