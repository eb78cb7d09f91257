#include "ledger/commands/ledger_terminal.h"

#include <iostream>

#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/complaint.h"

namespace kivo::ledger {

using book::Book;
using book::BookFailure;
using book::LedgerEntry;

int fail(const std::string& what, int status) {
  linux_platform::complain("kivo-ledger", what);
  return status;
}

int print(const std::string& text) {
  std::cout << text << std::flush;
  return std::cout ? 0 : fail("standard output cannot be written");
}

int withBook(const std::function<int(Book&)>& use) {
  auto book = Book::open();
  if (!book) return exitFailure;
  try {
    return use(*book);
  } catch (const BookFailure& failure) {
    book->tell(failure);
    return exitFailure;
  }
}

int withEntry(const linux_platform::GivenParameters& given,
              const std::function<int(Book&, const LedgerEntry&)>& use) {
  const auto id = platform::integerFromText(given.at("ID"));
  if (!id) {
    return fail("ID is the number of a transaction, as list and review show it",
                linux_platform::exitBadUsage);
  }
  return withBook([&](Book& book) {
    const auto entry = book.entry(*id);
    return entry ? use(book, *entry) : fail("no transaction has the ID " + std::to_string(*id));
  });
}

void tellSetAside(const Book& book) {
  std::string ids;
  for (const LedgerEntry& entry : book.entries({.state = LedgerEntry::State::setAside})) {
    ids += (ids.empty() ? "" : ", ") + std::to_string(entry.id);
  }
  if (ids.empty()) return;
  linux_platform::complain("kivo-ledger",
                           "these transactions are set aside and counted nowhere, since a value of "
                           "each cannot be: " +
                               ids + "; kivo-ledger show ID says which, edit or delete it");
}

}  // namespace kivo::ledger
