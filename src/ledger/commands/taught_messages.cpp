#include "ledger/commands/taught_messages.h"

#include <string>
#include <vector>

#include "book/book_command.h"
#include "ledger/commands/entry_listing.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "recording/ignored_booking.h"
#include "recording/rereading.h"
#include "recording/taught_entries.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using book::LedgerEntry;
using linux_platform::print;
using money::CurrencyCode;
using recognition::MessageTemplate;
using recording::listed;
using recording::MessageReader;
using recording::TaughtEntries;

namespace {

// Has the entry `id` in the book as it is read now.
void correctEntry(Book& book, std::int64_t id, const MessageReader& read,
                  const CurrencyCode& currency) {
  const auto before = book.entry(id);
  const auto now = recording::reread(book, id, read, currency);
  if (!before || before->edited || !now || now->readsAs(*before)) return;
  const std::string name = std::to_string(id);
  const bool waits = before->state == LedgerEntry::State::review;
  if (now->state == LedgerEntry::State::review) {
    if (!waits) print(name + " stays as it is, since it would be for review.\n");
  } else if (book.bookAs(*now)) {
    print((waits ? "Booked " : "Corrected ") + name + ".\n");
  }
}

// Adds an ignored message that is a payment as it is read now. Returns its id when it is in review.
std::optional<std::int64_t> addIgnored(Book& book, std::int64_t number, const MessageReader& read,
                                       const CurrencyCode& currency) {
  const auto message = book.ignored(number);
  if (!message) return std::nullopt;
  const auto added = recording::addIgnored(
      book, number, recording::readingFor(book, read, message->text, message->date, currency));
  if (!added) return std::nullopt;
  const bool isBooked = added->state == LedgerEntry::State::booked;
  print((isBooked ? "Booked" : "For review") + std::string(" as transaction ") +
        std::to_string(added->id) + ".\n");
  return isBooked ? std::nullopt : std::optional(added->id);
}

void tellIgnored(Book& book, const MessageTemplate& taught,
                 const std::vector<std::int64_t>& numbers) {
  if (numbers.empty()) return;
  if (taught.kind) {
    return print("Ignored messages that fit: " + listed(numbers) + ". `" +
                 book::bookCommand("book NUMBER") + "` books one.\n");
  }
  for (const std::int64_t number : numbers) book.removeIgnored(number);
  print("Removed from the ignored messages: " + listed(numbers) + ".\n");
}

}  // namespace

void correctByTemplate(Book& book, book::UserCommand& command, const CurrencyCode& currency,
                       const MessageTemplate& taught, const TaughtMessage& shown,
                       const std::function<bool()>& booksOthers) {
  const MessageReader read = recording::TemplateFile::reader();
  std::optional<std::int64_t> toReview;
  book.asCommand(command, [&] {
    if (shown.entry) correctEntry(book, *shown.entry, read, currency);
    if (shown.ignored) toReview = addIgnored(book, *shown.ignored, read, currency);
  });
  if (!shown.entry && !shown.ignored) {
    print("The message itself is not booked: it did not come from the phone.\n");
  }
  TaughtEntries found = recording::taughtEntries(book, taught, read, currency);
  if (toReview) std::erase(found.unclear, *toReview);
  if (!found.edited.empty()) print("Left as you edited them: " + listed(found.edited) + ".\n");
  if (!found.none.empty()) {
    print("In the book, and no payment: " + listed(found.none) + ". `" +
          book::bookCommand("delete ID") + "` deletes one.\n");
  }
  if (!found.unclear.empty()) print("Still for review: " + listed(found.unclear) + ".\n");
  book.asCommand(command, [&] { tellIgnored(book, taught, found.ignored); });
  if (found.clear.empty()) return;
  print("\nOthers that fit, as they are read now:\n" +
        EntryListing::table(found.clear, linux_platform::screenWidth()));
  if (!booksOthers()) return print("Left as they are; with --book, teach books them so.\n");
  std::size_t booked = 0;
  book.asCommand(command, [&] {
    for (const LedgerEntry& entry : found.clear) booked += book.bookAs(entry) ? 1U : 0U;
  });
  print("Booked " + std::to_string(booked) + " so.\n");
}

}  // namespace kivo::ledger
