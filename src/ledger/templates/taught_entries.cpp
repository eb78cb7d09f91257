#include "ledger/templates/taught_entries.h"

#include <utility>

#include "ledger/templates/message_text.h"

namespace kivo::ledger {

TaughtEntries taughtEntries(const Book& book, const MessageTemplate& taught,
                            const std::string& currency) {
  TaughtEntries found;
  for (const LedgerEntry& entry : book.entries({.state = LedgerEntry::State::review})) {
    if (!entry.text || !taught.pattern.fit(templateForm(partThatCounts(*entry.text)))) continue;
    auto read = book.reread(entry.id, currency);
    if (!read) {
      found.none.push_back(entry.id);
    } else if (read->state == LedgerEntry::State::review) {
      found.unclear.push_back(entry.id);
    } else {
      found.clear.push_back(*std::move(read));
    }
  }
  return found;
}

std::string listed(const std::vector<std::int64_t>& ids) {
  std::string text;
  for (std::size_t at = 0; at < ids.size(); ++at) {
    if (at > 0) text += at + 1 == ids.size() ? " and " : ", ";
    text += std::to_string(ids[at]);
  }
  return text;
}

}  // namespace kivo::ledger
