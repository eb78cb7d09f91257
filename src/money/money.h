// Sums of money in whole minor units, and their texts. Knows no exchange rates.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "money/currency_code.h"

namespace kivo::money {

/// A sum in whole minor units: 15000 and "EGP" are 150.00 Egyptian pounds.
struct Money {
  std::int64_t minorUnits = 0;
  CurrencyCode currency;

  bool operator==(const Money&) const = default;

  /// Adds a sum of the same currency; any other is a bug, which stops the process. Throws
  /// std::overflow_error when the result does not fit.
  Money& operator+=(const Money& other);
};

/// The largest sum that is booked, in minor units: up to it, an answer can carry each as a double.
inline constexpr std::int64_t largestSum = std::int64_t{1} << 53;

/// Whether `money` is above zero and `largestSum` at most.
bool isBookable(const Money& money);

/// The number of decimals of `currency` by ISO 4217 (0, 2, 3 or 4); 2 for an unknown code.
int minorDigits(const CurrencyCode& currency);

/// Reads the ISO 4217 code of money that circulates, in either case; absent for any other text.
std::optional<CurrencyCode> currencyFromText(std::string_view text);

/// `money` as a plain decimal with all decimals of its currency, without the code: "150.00",
/// "-0.05".
std::string amountText(const Money& money);

/// `money` as `amountText`, a blank and the code: "150.00 EGP".
std::string sumText(const Money& money);

/// Reads a decimal such as "150", "1,189.50" or "-0.05" as a sum in `currency`: a point before the
/// decimals, and commas, if any, between all thousands. Absent when `amount` is anything else, has
/// more decimals than the currency, or exceeds `largestSum` in either direction.
std::optional<Money> moneyFromText(std::string_view amount, const CurrencyCode& currency);

/// The sums of a currency next to a decimal, at most and at least as large; both are the decimal
/// itself where the currency has enough decimals.
struct NearestSums {
  Money atMost;
  Money atLeast;
};

/// Reads a decimal that is not below zero as `moneyFromText` does, but it may have more decimals
/// than the currency.
std::optional<NearestSums> nearestSums(std::string_view amount, const CurrencyCode& currency);

}  // namespace kivo::money
