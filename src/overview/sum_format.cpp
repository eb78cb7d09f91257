#include "overview/sum_format.h"

#include <utility>

#include "money/money.h"

namespace kivo::overview {

using money::amountText;
using money::minorDigits;

using linux_platform::AmountFormat;

SumFormat::SumFormat(std::string currency)
    : currency_(std::move(currency)),
      plain_(currency_, minorDigits(currency_), AmountFormat::Currency::hidden),
      withCurrency_(currency_, minorDigits(currency_), AmountFormat::Currency::shown) {}

std::string SumFormat::plain(std::int64_t minorUnits) const {
  return plain_.text(amountText({minorUnits, currency_}));
}

std::string SumFormat::withCurrency(std::int64_t minorUnits) const {
  return withCurrency_.text(amountText({minorUnits, currency_}));
}

}  // namespace kivo::overview
