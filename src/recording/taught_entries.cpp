#include "recording/taught_entries.h"

#include <optional>
#include <utility>

#include "recognition/templates/message_text.h"
#include "recording/rereading.h"

namespace kivo::recording {

using book::Book;
using book::LedgerEntry;
using recognition::MessageTemplate;
using recognition::partThatCounts;
using recognition::templateForm;

namespace {

// `read` is `entry` as its message is read now.
void sortIn(const LedgerEntry& entry, std::optional<LedgerEntry> read, TaughtEntries& found) {
  if (!read) {
    found.none.push_back(entry.id);
  } else if (read->state == LedgerEntry::State::booked) {
    if (!read->readsAs(entry)) found.clear.push_back(*std::move(read));
  } else if (entry.state == LedgerEntry::State::review) {
    found.unclear.push_back(entry.id);
  }
}

}  // namespace

TaughtEntries taughtEntries(const Book& book, const MessageTemplate& taught,
                            const MessageReader& read, const money::CurrencyCode& currency) {
  TaughtEntries found;
  for (const auto state : {LedgerEntry::State::review, LedgerEntry::State::booked}) {
    for (const LedgerEntry& entry : book.entries({.state = state})) {
      const bool fits = entry.text && taught.pattern.fit(templateForm(partThatCounts(*entry.text)));
      if (!fits) continue;
      if (entry.edited) {
        found.edited.push_back(entry.id);
      } else {
        sortIn(entry, reread(book, entry.id, read, currency), found);
      }
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

}  // namespace kivo::recording
