// Formats amounts for the user, to the last decimal. NumberFormatter formats a double, which cannot
// hold every amount.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// Formats in the device's locale (LC_ALL, LC_MONETARY, LANG), with its grouping and digits. Not
/// thread-safe.
class AmountFormat {
 public:
  enum class Currency { shown, hidden };

  /// A format for amounts in `currencyCode` (ISO 4217) with `decimals` decimals, with the locale's
  /// symbol for the currency or without. An unknown currency is not shown.
  AmountFormat(std::string_view currencyCode, int decimals, Currency currency);
  ~AmountFormat();
  AmountFormat(AmountFormat&& other) noexcept;
  AmountFormat& operator=(AmountFormat&& other) noexcept;

  /// Returns `plain`, a plain decimal such as "-1250.05", as UTF-8.
  [[nodiscard]] std::string text(const std::string& plain) const;

 private:
  struct Format;
  std::unique_ptr<Format> format_;
};

}  // namespace kivo::linux_platform
