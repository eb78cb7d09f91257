#include "ledger/commands/opened_book.h"

#include <map>
#include <utility>

#include "book/book_command.h"
#include "ledger/commands/chosen_ids.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/complaint.h"
#include "recording/book_currency.h"
#include "store/shared_store.h"

namespace kivo::ledger {

using book::Book;
using book::BookFailure;
using book::LedgerEntry;
using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::ReportedFailure;

void withBook(const std::function<void(Book&)>& use) {
  Book book = Book::open();
  try {
    use(book);
  } catch (const BookFailure& failure) {
    book.tell(failure);
    throw ReportedFailure();
  }
}

void withEntry(const linux_platform::GivenParameters& given,
               const std::function<void(Book&, const LedgerEntry&)>& use) {
  const auto id = platform::integerFromText(given.at("ID"));
  if (!id) {
    throw BadUsage("ID is the number of a transaction, as list and review show it");
  }
  withBook([&](Book& book) {
    const auto entry = book.entry(*id);
    if (!entry) throw CommandFailure("no transaction has the ID " + std::to_string(*id));
    use(book, *entry);
  });
}

std::vector<LedgerEntry> chosenEntries(const Book& book,
                                       const linux_platform::GivenParameters& given) {
  std::map<std::int64_t, LedgerEntry> chosen;
  for (const auto& [first, last] : idRangesFrom(given.at("ID"))) {
    bool isFound = false;
    for (std::int64_t nth = 0; nth <= last - first; ++nth) {
      auto entry = book.entry(first + nth);
      if (!entry) continue;
      isFound = true;
      const std::int64_t id = entry->id;
      chosen.insert_or_assign(id, *std::move(entry));
    }
    if (isFound) continue;
    if (first == last) throw CommandFailure("no transaction has the ID " + std::to_string(first));
    throw CommandFailure("no transaction has an ID from " + std::to_string(first) + " to " +
                         std::to_string(last));
  }
  std::vector<LedgerEntry> entries;
  for (auto& [id, entry] : chosen) entries.push_back(std::move(entry));
  return entries;
}

void changeEach(Book& book, const std::vector<LedgerEntry>& entries,
                const std::function<void(const LedgerEntry&)>& change) {
  book.inOneStep([&] {
    for (const LedgerEntry& entry : entries) {
      try {
        change(entry);
      } catch (const CommandFailure& failure) {
        if (entries.size() == 1) throw;
        throw CommandFailure(
            std::to_string(entry.id) + ": " + failure.what() + "; nothing was changed",
            failure.status());
      }
    }
  });
}

book::IgnoredMessage requiredIgnored(const Book& book, std::int64_t number) {
  auto message = book.ignored(number);
  if (message) return *std::move(message);
  throw CommandFailure("no ignored message has the number " + std::to_string(number) + "; " +
                       book::bookCommand("ignored") + " shows those that are kept");
}

money::CurrencyCode requiredBookCurrency() {
  const auto currency = recording::bookCurrency();
  if (!currency) throw ReportedFailure();
  return *currency;
}

std::string givenUser(const linux_platform::GivenParameters& given) {
  if (const auto named = given.find(personOption); named != given.end()) return named->second;
  const auto store = SharedStore::open(appGroup);
  if (!store) throw ReportedFailure();
  return store->readNonEmptyText(StoreKeys::userId).value_or("local");
}

void tellSetAside(const Book& book) {
  std::string ids;
  for (const LedgerEntry& entry : book.entries({.state = LedgerEntry::State::setAside})) {
    ids += (ids.empty() ? "" : ", ") + std::to_string(entry.id);
  }
  if (ids.empty()) return;
  linux_platform::complain(book::bookProgram(),
                           "these transactions are set aside and counted nowhere, since a value of "
                           "each cannot be: " +
                               ids + "; " + book::bookCommand("show ID") +
                               " says which, edit or delete it");
}

}  // namespace kivo::ledger
