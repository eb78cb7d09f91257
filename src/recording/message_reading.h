// Reads a message for the book: by the recogniser or by templates, and with the book's exchange
// rates. Stores nothing.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "book/book.h"
#include "recognition/reading.h"

namespace kivo::recording {

/// Reads a message, as `recognition::read` does.
using MessageReader = std::function<recognition::Reading(std::string_view text,
                                                         const money::CurrencyCode& bookCurrency)>;

/// A message as it was read, with its sum in the currency of the book where that has a rate.
struct BookReading {
  recognition::Reading reading = {};
  /// The sum of the message when that of `reading` was converted from it; else absent.
  std::optional<money::Money> original = {};
};

/// Returns whether the message moved money, or seems to have.
bool isTransaction(const BookReading& read);

/// Reads `text`, of the day `day`, by `read` for `book`, which is kept in `currency`. A message
/// that is in review only for its currency is read in that currency, and converted, when the book
/// has a rate for it on that day and the result is bookable. Throws BookFailure.
BookReading readingFor(const book::Book& book, const MessageReader& read, const std::string& text,
                       const money::Day& day, const money::CurrencyCode& currency);

/// Sets all of `entry` that the reading of its message holds. An entry whose sum cannot be booked
/// is in review without it.
void apply(const BookReading& read, book::LedgerEntry& entry);

}  // namespace kivo::recording
