// The entries in review that a new template fits, and booking them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ledger/book.h"
#include "ledger/templates/message_template.h"

namespace kivo::ledger {

/// The entries in review whose message a template fits, by their readings now.
struct TaughtEntries {
  /// Clear, and ready for `Book::acceptAs`.
  std::vector<LedgerEntry> clear = {};
  /// The ids of those that are still for review, such as those in a currency without a rate.
  std::vector<std::int64_t> unclear = {};
  /// The ids of those that are no payment.
  std::vector<std::int64_t> none = {};
};

/// Finds the entries of `book`, which is kept in `currency` and reads by the templates of the file,
/// that fit `taught`.
TaughtEntries taughtEntries(const Book& book, const MessageTemplate& taught,
                            const std::string& currency);

/// "1, 2 and 5".
std::string listed(const std::vector<std::int64_t>& ids);

}  // namespace kivo::ledger
