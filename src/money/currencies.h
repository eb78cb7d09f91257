// The world's currencies: ISO 4217 codes, and the signs and words that banks and people write.
#pragma once

#include <span>
#include <string_view>

namespace kivo::money {

/// A currency of ISO 4217 in circulation.
struct Currency {
  std::string_view code;
  int minorDigits;
  /// Whether its countries group thousands by a point: "5.000" is five thousand.
  bool pointGroups;
  /// Whether its countries separate three decimals by a comma: "1,500" is one and a half.
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

}  // namespace kivo::money
