// Decisions on entries that are in the book: books one from review, and reads one again. Asks
// the user nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "book/book.h"
#include "recording/message_reading.h"

namespace kivo::recording {

/// The sum that an entry was booked with.
struct BookedSum {
  money::Money amount;
  /// The rate by which it was converted; absent when it is the entry's own.
  std::optional<money::Rate> rate = {};
};

/// Books the entry `id`. The amount of an entry in review that is not in `currency`, the book's, is
/// converted when a rate is set, and stays as it is otherwise. Returns nullopt, and changes
/// nothing, when no entry has this id, it is set aside, or it has no amount that is bookable, also
/// by the rate. Throws BookFailure.
std::optional<BookedSum> accept(book::Book& book, std::int64_t id,
                                const money::CurrencyCode& currency);

/// An entry that was booked as the user states it.
struct BookedAsStated {
  BookedSum sum;
  /// The rule for later payments to its payee; absent when `stated` makes none.
  std::optional<book::KeptRule> rule = {};
  /// The kind that the entry has now.
  money::Kind kind = money::Kind::expense;
};

/// Books the new entry `id` as `accept` does, and gives it what the user stated: its kind and its
/// category, which makes a rule for its payee. nullopt as `accept`. Call it in a step. Throws
/// BookFailure.
std::optional<BookedAsStated> acceptAs(book::Book& book, std::int64_t id,
                                       const book::EntryChange& stated,
                                       const money::CurrencyCode& currency);

/// Returns the entry `id` as `read` reads its message now for a book kept in `currency`, with rates
/// and corrections, marked where it looks like an earlier one. Changes nothing. nullopt when no
/// entry has this id, its text was forgotten, or it is read as no transaction. Throws BookFailure.
std::optional<book::LedgerEntry> reread(const book::Book& book, std::int64_t id,
                                        const MessageReader& read,
                                        const money::CurrencyCode& currency);

}  // namespace kivo::recording
