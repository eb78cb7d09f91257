#include "recording/rereading.h"

namespace kivo::recording {
namespace {

using book::LedgerEntry;

// The sum of `entry` as it is booked; absent when it cannot be.
std::optional<BookedSum> bookableSum(const book::Book& book, const LedgerEntry& entry,
                                     const money::CurrencyCode& currency) {
  const bool canBe =
      entry.state != LedgerEntry::State::setAside && entry.amount && isBookable(*entry.amount);
  if (!canBe) return std::nullopt;
  const bool isForeign =
      entry.state == LedgerEntry::State::review && entry.amount->currency != currency;
  const auto rate = isForeign ? book.rate(entry.amount->currency, entry.date) : std::nullopt;
  if (!rate) return BookedSum{*entry.amount};
  const auto converted = rate->convert(*entry.amount, currency);
  if (!converted) return std::nullopt;
  return BookedSum{*converted, rate};
}

}  // namespace

std::optional<BookedSum> accept(book::Book& book, std::int64_t id,
                                const money::CurrencyCode& currency) {
  std::optional<BookedSum> sum;
  book.inOneStep([&] {
    const auto entry = book.entry(id);
    if (entry) sum = bookableSum(book, *entry, currency);
    if (sum) book.bookWith(id, sum->amount, sum->rate ? entry->amount : entry->original);
  });
  return sum;
}

std::optional<BookedAsStated> acceptAs(book::Book& book, std::int64_t id,
                                       const book::EntryChange& stated,
                                       const money::CurrencyCode& currency) {
  const auto sum = accept(book, id, currency);
  if (!sum) return std::nullopt;
  const auto entry = book.entry(id).value();
  const bool isEdited = stated.kind || stated.category || entry.text;
  if (isEdited) book.edit(id, stated);
  return BookedAsStated{*sum, book.keepRuleOf(id, stated), stated.kind.value_or(entry.kind)};
}

std::optional<LedgerEntry> reread(const book::Book& book, std::int64_t id,
                                  const MessageReader& read, const money::CurrencyCode& currency) {
  auto found = book.entry(id);
  if (!found || !found->text) return std::nullopt;
  const BookReading reading = readingFor(book, read, *found->text, found->date, currency);
  if (!isTransaction(reading)) return std::nullopt;
  apply(reading, *found);
  return book.fitted(*std::move(found));
}

}  // namespace kivo::recording
