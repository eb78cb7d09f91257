// An exchange rate as an exact decimal, and the conversion of a sum by it. Stores nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "money/money.h"

namespace kivo::money {

/// An exchange rate, the price of one unit of a currency in another: a decimal above zero.
class Rate {
 public:
  /// The most digits that a rate has, so that every conversion is exact.
  static constexpr std::size_t mostDigits = 18;

  /// Reads ASCII digits with at most one point among, before or after them: "48.5". Absent for
  /// anything else (a sign, an exponent, a blank), for zero and for more than `mostDigits`.
  static std::optional<Rate> fromText(std::string_view text);

  /// Returns the rate as `fromText` reads it, with a digit on both sides of a point.
  [[nodiscard]] std::string text() const;

  /// Returns `sum` in `currency`, rounded half up to whole minor units. Absent unless `sum` and the
  /// result are bookable.
  [[nodiscard]] std::optional<Money> convert(const Money& sum, const CurrencyCode& currency) const;

 private:
  Rate(std::int64_t digits, int decimals) : digits_(digits), decimals_(decimals) {}

  // The rate is `digits_`, the last `decimals_` of which are behind the point.
  std::int64_t digits_;
  int decimals_;
};

}  // namespace kivo::money
