// The world's currencies: ISO 4217 codes, and the signs and words that banks and people write.
#pragma once

#include <span>
#include <string_view>

namespace kivo::ledger {

/// A currency of ISO 4217 in circulation.
struct Currency {
  std::string_view code;
  int minorDigits;
  /// What a lone point before exactly three digits does in its countries: "5.000" is five thousand.
  bool pointGroups;
  /// What a lone comma before exactly three digits does where three decimals are usual.
  bool commaDecimal;
};

/// A sign or word for money, such as "Rs", with all currencies that it may mean.
struct CurrencyWord {
  /// Cut into items by blanks: "ج . م".
  std::string_view items;
  /// Codes separated by blanks, the likeliest first.
  std::string_view codes;
};

/// The currency with this upper-case code, or null.
const Currency* currencyByCode(std::string_view code);

/// All signs and words but the codes themselves.
std::span<const CurrencyWord> currencyWords();

}  // namespace kivo::ledger
