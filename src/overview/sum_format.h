// Formats sums of one currency for the user. Converts nothing.
#pragma once

#include <string>

#include "money/money.h"
#include "platform/linux/locale/amount_format.h"

namespace kivo::overview {

/// Writes sums in the device's locale, with all decimals of the currency. Not thread-safe.
class SumFormat {
 public:
  /// For `currency`, an ISO 4217 code.
  explicit SumFormat(const money::CurrencyCode& currency);

  /// Returns `sum`, which is in that currency, without it: "1,250.00".
  [[nodiscard]] std::string plain(const money::Money& sum) const;
  /// Returns `sum`, which is in that currency, with it: "EGP 1,250.00".
  [[nodiscard]] std::string withCurrency(const money::Money& sum) const;

 private:
  linux_platform::AmountFormat plain_;
  linux_platform::AmountFormat withCurrency_;
};

}  // namespace kivo::overview
