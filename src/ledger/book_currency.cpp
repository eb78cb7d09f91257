#include "ledger/book_currency.h"

#include "feedback/amount_formatter.h"
#include "money/money.h"
#include "store/shared_store.h"

namespace kivo::ledger {

std::optional<std::string> bookCurrency() {
  const auto store = SharedStore::open(appGroup);
  if (!store) return std::nullopt;
  return money::currencyCode(AmountFormatter::currencyCode(*store));
}

}  // namespace kivo::ledger
