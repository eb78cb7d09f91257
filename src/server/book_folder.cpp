#include "server/book_folder.h"

#include "book/book.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/terminal/command_failure.h"
#include "store/shared_store.h"

namespace kivo::server {

void BookFolder::fill(const std::filesystem::path& folder, const money::CurrencyCode& currency) {
  const linux_platform::FoldersIn folders(folder);
  auto store = SharedStore::open(appGroup);
  if (!store) throw linux_platform::ReportedFailure();
  store->writeText(StoreKeys::currency, currency.text());
  if (!store->synchronize()) throw linux_platform::ReportedFailure();
  book::Book::open();
}

}  // namespace kivo::server
