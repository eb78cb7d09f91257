// Formats sums of one currency for the user. Converts nothing.
#pragma once

#include <cstdint>
#include <string>

#include "platform/linux/locale/amount_format.h"

namespace kivo::overview {

/// Writes sums in the device's locale, with all decimals of the currency. Not thread-safe.
class SumFormat {
 public:
  /// For `currency`, an ISO 4217 code.
  explicit SumFormat(std::string currency);

  /// Returns `minorUnits` without the currency: "1,250.00".
  [[nodiscard]] std::string plain(std::int64_t minorUnits) const;
  /// Returns `minorUnits` with the currency: "EGP 1,250.00".
  [[nodiscard]] std::string withCurrency(std::int64_t minorUnits) const;

 private:
  std::string currency_;
  linux_platform::AmountFormat plain_;
  linux_platform::AmountFormat withCurrency_;
};

}  // namespace kivo::overview
