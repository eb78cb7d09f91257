#include "recording/ignored_booking.h"

#include <utility>

#include "recognition/message_items.h"
#include "recognition/spelling.h"
#include "recognition/stated_sums.h"
#include "recognition/templates/message_template.h"

namespace kivo::recording {

using book::IgnoredMessage;
using book::LedgerEntry;
using money::CurrencyCode;
using money::Money;
using recognition::Item;
using recognition::Reading;

namespace {

// Of several sums, one may be a balance.
std::optional<Money> onlySum(const std::string& text, const CurrencyCode& currency) {
  const auto sums = sumsIn(text, currency);
  const bool isClear = sums.size() == 1 && sums.front() && isBookable(*sums.front());
  return isClear ? sums.front() : std::nullopt;
}

}  // namespace

std::vector<std::optional<Money>> sumsIn(const std::string& text,
                                         const CurrencyCode& bookCurrency) {
  const std::string form = recognition::readableForm(recognition::partThatCounts(text));
  std::vector<std::optional<Money>> sums;
  for (const Item& item : recognition::withSums(recognition::itemsOf(form), bookCurrency.text())) {
    if (item.kind != Item::Kind::sum) continue;
    auto& sum = sums.emplace_back();
    if (!item.sum.minorUnits) continue;
    const auto stated = CurrencyCode::fromText(item.sum.currency);
    sum = Money{*item.sum.minorUnits, stated.value_or(bookCurrency)};
  }
  return sums;
}

StatedReading statedReading(const book::Book& book, const IgnoredMessage& message,
                            const StatedParts& stated, const MessageReader& read,
                            const CurrencyCode& currency) {
  BookReading now = readingFor(book, read, message.text, message.date, currency);
  Reading& reading = now.reading;
  const bool isRead = isTransaction(now);
  if (stated.amount) {
    reading.amount = stated.amount;
    now.original.reset();
  }
  if (!reading.amount) reading.amount = onlySum(message.text, currency);
  auto kind = stated.kind;
  if (!kind && isRead) kind = reading.kind;
  if (!isRead || stated.kind || stated.payee) {
    reading = recognition::readingAs(kind.value_or(reading.kind), reading.amount,
                                     stated.payee.value_or(reading.payee), reading);
  }
  return {.kind = kind, .message = std::move(now)};
}

std::optional<LedgerEntry> addIgnored(book::Book& book, std::int64_t number,
                                      const BookReading& reading) {
  std::optional<LedgerEntry> added;
  book.inOneStep([&] {
    const auto message = book.ignored(number);
    if (!message || !isTransaction(reading)) return;
    LedgerEntry entry;
    entry.key = message->key;
    entry.userId = message->userId;
    entry.date = message->date;
    entry.text = message->text;
    apply(reading, entry);
    added = book.fitted(std::move(entry));
    added->id = book.add(*added);
    book.removeIgnored(number);
  });
  return added;
}

}  // namespace kivo::recording
