// A message into the book: reads it, converts its sum, applies corrections, marks look-alikes, and
// stores it with the answer to its key. Speaks no HTTP.
#pragma once

#include <optional>
#include <string>

#include "book/book.h"
#include "recording/message_reading.h"

namespace kivo::recording {

/// A message of an extraction request.
struct Message {
  std::string text;
  std::string userId;
  money::Day expenseDate = {};
  /// The same in each attempt to send this message.
  std::string idempotencyKey;
};

/// The result of recording a message.
struct Recorded {
  /// The response record as JSON.
  std::string answer;
  /// The new entry; absent when the key was known, and when the message is no transaction.
  std::optional<book::LedgerEntry> entry = {};
};

/// Returns the answer to `message`. A key that this user has sent before gets the same bytes as
/// then, whatever the text. For a new key, reads the message and stores the key, the answer and the
/// transaction in one step, or instead of that the message, when it is not booked though it holds a
/// sum. `currency` is the currency of the book: a transaction in another one is
/// converted when a rate is set, and is in review otherwise. Throws BookFailure.
Recorded record(book::Book& book, const Message& message, const MessageReader& read,
                const money::CurrencyCode& currency);

/// Records `message`, whose key has no answer, as it was read: the part of `record` that stores.
/// Call it in a step. Throws BookFailure.
Recorded recordAs(book::Book& book, const BookReading& read, const Message& message);

/// Returns the entry that `recordAs` would add for a transaction, as `Book::fitted` returns it.
/// Throws BookFailure.
book::LedgerEntry fittedEntry(const book::Book& book, const BookReading& read,
                              const Message& message);

}  // namespace kivo::recording
