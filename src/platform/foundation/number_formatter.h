// Amounts of money as a person of the device's locale reads them. Parses none.
#pragma once

#include <optional>
#include <string>

namespace kivo::platform {

/// Formats with the style of a currency, in the device's current locale (LC_ALL, LC_MONETARY,
/// LANG).
struct NumberFormatter {
  /// An ISO 4217 code, three ASCII letters of either case, or empty for a sum of no named currency.
  std::string currencyCode;

  /// The text of `value`, UTF-8, with the locale's symbol, grouping and digits and the currency's
  /// number of decimals; none for a code that is neither empty nor three letters.
  [[nodiscard]] std::optional<std::string> string(double value) const;
};

}  // namespace kivo::platform
