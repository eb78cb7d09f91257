// Formats amounts of money for the user.
#pragma once

#include <optional>
#include <string>

namespace kivo::platform {

/// Formats in the device's locale (LC_ALL, LC_MONETARY, LANG).
struct NumberFormatter {
  /// An ISO 4217 code, three ASCII letters of either case, or empty for an amount without a
  /// currency.
  std::string currencyCode;

  /// Returns `value` as UTF-8, with the locale's symbol, grouping and digits and the currency's
  /// number of decimals; nullopt for a code that is neither empty nor three letters.
  [[nodiscard]] std::optional<std::string> string(double value) const;
};

}  // namespace kivo::platform
