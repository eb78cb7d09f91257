// Books ignored messages, as they are read now or as the user states. Asks nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "book/book.h"
#include "recording/message_reading.h"

namespace kivo::recording {

/// The parts of a transaction as the user states them. Absent parts are as the message is read.
struct StatedParts {
  std::optional<money::Kind> kind = {};
  std::optional<money::Money> amount = {};
  std::optional<std::string> payee = {};
};

/// A message as a transaction with the stated parts.
struct StatedReading {
  /// Absent when it is neither stated nor read.
  std::optional<money::Kind> kind = {};
  /// The sum is absent when it is neither stated nor read, nor the only sum of the message.
  BookReading message = {};
};

/// Returns `message` as a transaction with the parts `stated`, read by `read` for `book`, which is
/// kept in `currency`. Stores nothing. Throws BookFailure.
StatedReading statedReading(const book::Book& book, const book::IgnoredMessage& message,
                            const StatedParts& stated, const MessageReader& read,
                            const money::CurrencyCode& currency);

/// Returns the sums in `text` for a book in `bookCurrency`, in order; nullopt for one whose digits
/// can be read in two ways.
std::vector<std::optional<money::Money>> sumsIn(const std::string& text,
                                                const money::CurrencyCode& bookCurrency);

/// Adds the ignored message `number` to `book` as the transaction of `reading`, with the key, day
/// and text of the message, and removes it from the ignored ones, in one step. A reading that
/// needs a review adds an entry in review. Returns the entry; nullopt when no ignored message has
/// this number, and when `reading` is no transaction. Throws BookFailure.
std::optional<book::LedgerEntry> addIgnored(book::Book& book, std::int64_t number,
                                            const BookReading& reading);

}  // namespace kivo::recording
