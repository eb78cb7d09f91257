#include "recording/taught_entries.h"

#include <algorithm>
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
  const auto fits = [&](const std::string& text) {
    return taught.pattern.fit(templateForm(partThatCounts(text))).has_value();
  };
  for (const auto state : {LedgerEntry::State::review, LedgerEntry::State::booked}) {
    for (const LedgerEntry& entry : book.entries({.state = state})) {
      if (!entry.text || !fits(*entry.text)) continue;
      if (entry.edited) {
        found.edited.push_back(entry.id);
      } else {
        sortIn(entry, reread(book, entry.id, read, currency), found);
      }
    }
  }
  for (const book::IgnoredMessage& message : book.ignored()) {
    if (fits(message.text)) found.ignored.push_back(message.number);
  }
  std::sort(found.ignored.begin(), found.ignored.end());
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
