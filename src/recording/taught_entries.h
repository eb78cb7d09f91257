// Finds the entries that a new template matches. Changes none.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"
#include "recognition/templates/message_template.h"
#include "recording/message_reading.h"

namespace kivo::recording {

/// The entries, booked or in review, that a template matches, by the outcome of reading them again.
struct TaughtEntries {
  /// As they are read now, without doubt and otherwise than the book has them; ready for
  /// `Book::bookAs`.
  std::vector<book::LedgerEntry> clear = {};
  /// The ids of those in review that stay there, such as those in a currency without a rate.
  std::vector<std::int64_t> unclear = {};
  /// The ids of those that are no payment.
  std::vector<std::int64_t> none = {};
  /// The ids of those that the user edited; they are not read again.
  std::vector<std::int64_t> edited = {};
  /// The numbers of the ignored messages that the template matches, ascending.
  std::vector<std::int64_t> ignored = {};
};

/// Reads the entries of `book` again that `taught` matches. The book is kept in `currency`,
/// and `read` must use the templates of the file. Takes time for every entry of the book that still
/// has its text. Throws BookFailure.
TaughtEntries taughtEntries(const book::Book& book, const recognition::MessageTemplate& taught,
                            const MessageReader& read, const money::CurrencyCode& currency);

/// Returns `ids` as a list: "1, 2 and 5".
std::string listed(const std::vector<std::int64_t>& ids);

}  // namespace kivo::recording
