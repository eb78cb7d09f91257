#include "server/new_book.h"

#include "book/book.h"
#include "platform/linux/terminal/command_failure.h"
#include "store/shared_store.h"

namespace kivo::server {

void makeNewBook(const money::CurrencyCode& currency) {
  auto store = SharedStore::open(appGroup);
  if (!store) throw linux_platform::ReportedFailure();
  store->writeText(StoreKeys::currency, currency.text());
  if (!store->synchronize()) throw linux_platform::ReportedFailure();
  book::Book::open();
}

}  // namespace kivo::server
