// Finds the entries in review that a new template matches. Books none.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ledger/book.h"
#include "ledger/templates/message_template.h"

namespace kivo::ledger {

/// The entries in review that a template matches, by the outcome of reading them again.
struct TaughtEntries {
  /// Read without doubt, and ready for `Book::acceptAs`.
  std::vector<LedgerEntry> clear = {};
  /// The ids of those that stay in review, such as those in a currency without a rate.
  std::vector<std::int64_t> unclear = {};
  /// The ids of those that are no payment.
  std::vector<std::int64_t> none = {};
};

/// Reads the entries in review of `book` again and returns those that `taught` matches. The book is
/// kept in `currency`, and its reader must use the templates of the file.
TaughtEntries taughtEntries(const Book& book, const MessageTemplate& taught,
                            const std::string& currency);

/// Returns `ids` as a list: "1, 2 and 5".
std::string listed(const std::vector<std::int64_t>& ids);

}  // namespace kivo::ledger
