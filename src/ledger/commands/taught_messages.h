// Has the messages of the book as a new template reads them, and prints what becomes of each.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "book/book.h"
#include "recognition/templates/message_template.h"

namespace kivo::ledger {

/// The message that a template was made of: that of an entry, an ignored one, or neither when it
/// came from standard input.
struct TaughtMessage {
  std::optional<std::int64_t> entry = {};
  std::optional<std::int64_t> ignored = {};
};

/// Books or corrects the message `shown` of `book`, which is kept in `currency`, as it is read now
/// that `taught` is in the file of templates. Then prints the others that `taught` matches: entries
/// that are read otherwise than the book has them, which it books when `booksOthers` returns true,
/// and ignored messages, which it removes when `taught` says that they are no payment. All changes
/// are steps of `command`. Throws BookFailure.
void correctByTemplate(book::Book& book, book::UserCommand& command,
                       const money::CurrencyCode& currency,
                       const recognition::MessageTemplate& taught, const TaughtMessage& shown,
                       const std::function<bool()>& booksOthers);

}  // namespace kivo::ledger
