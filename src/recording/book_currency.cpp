#include "recording/book_currency.h"

#include "feedback/amount_formatter.h"
#include "store/shared_store.h"

namespace kivo::recording {

std::optional<money::CurrencyCode> bookCurrency() {
  const auto store = SharedStore::open(appGroup);
  if (!store) return std::nullopt;
  return money::CurrencyCode::fromText(AmountFormatter::currencyCode(*store))
      .value_or(money::CurrencyCode());
}

}  // namespace kivo::recording
