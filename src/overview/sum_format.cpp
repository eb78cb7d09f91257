#include "overview/sum_format.h"

namespace kivo::overview {

using linux_platform::AmountFormat;
using money::minorDigits;

SumFormat::SumFormat(const money::CurrencyCode& currency)
    : plain_(currency.text(), minorDigits(currency), AmountFormat::Currency::hidden),
      withCurrency_(currency.text(), minorDigits(currency), AmountFormat::Currency::shown) {}

std::string SumFormat::plain(const money::Money& sum) const { return plain_.text(amountText(sum)); }

std::string SumFormat::withCurrency(const money::Money& sum) const {
  return withCurrency_.text(amountText(sum));
}

}  // namespace kivo::overview
