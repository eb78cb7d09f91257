#include "money/money.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <stdexcept>

#include "money/currencies.h"

namespace kivo::money {

namespace {

// Returns `whole` without its commas; empty when they are not between all thousands.
std::string withoutCommas(std::string_view whole) {
  constexpr std::size_t groupAndComma = 4;
  if (whole.find(',') == std::string_view::npos) return std::string(whole);
  if (whole.front() == ',' || whole.front() == '0') return {};
  std::string digits;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    const bool between = (whole.size() - at) % groupAndComma == 0;
    if (between != (whole[at] == ',')) return {};
    if (!between) digits += whole[at];
  }
  return digits;
}

}  // namespace

Money& Money::operator+=(const Money& other) {
  if (other.currency != currency) std::abort();
  if (__builtin_add_overflow(minorUnits, other.minorUnits, &minorUnits)) {
    throw std::overflow_error("a sum does not fit");
  }
  return *this;
}

bool isBookable(const Money& money) {
  return money.minorUnits > 0 && money.minorUnits <= largestSum;
}

int minorDigits(const CurrencyCode& currency) {
  constexpr int digitsOfMost = 2;
  const Currency* const found = currencyByCode(currency.text());
  return found == nullptr ? digitsOfMost : found->minorDigits;
}

std::optional<CurrencyCode> currencyFromText(std::string_view text) {
  const auto code = CurrencyCode::fromText(text);
  return code && currencyByCode(code->text()) != nullptr ? code : std::nullopt;
}

std::string amountText(const Money& money) {
  const auto decimals = static_cast<std::size_t>(minorDigits(money.currency));
  const bool negative = money.minorUnits < 0;
  // The smallest integer has no positive counterpart, its digits have.
  std::string digits = std::to_string(money.minorUnits).substr(negative ? 1 : 0);
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
  if (decimals > 0) digits.insert(digits.size() - decimals, 1, '.');
  return negative ? "-" + digits : digits;
}

std::string sumText(const Money& money) { return amountText(money) + " " + money.currency.text(); }

std::optional<Money> moneyFromText(std::string_view amount, const CurrencyCode& currency) {
  const bool negative = amount.starts_with('-');
  if (negative) amount.remove_prefix(1);
  const std::size_t point = amount.find('.');
  const std::string whole = withoutCommas(amount.substr(0, point));
  const std::string_view fraction =
      point == std::string_view::npos ? std::string_view() : amount.substr(point + 1);
  const auto decimals = static_cast<std::size_t>(minorDigits(currency));
  if (whole.empty() || fraction.size() > decimals || amount.ends_with('.')) return std::nullopt;
  std::string digits(negative ? "-" : "");
  digits.append(whole).append(fraction).append(decimals - fraction.size(), '0');
  if (digits.find_first_not_of("0123456789", negative ? 1 : 0) != std::string::npos) {
    return std::nullopt;
  }
  Money money{.currency = currency};
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), money.minorUnits);
  const bool fits =
      error == std::errc() && money.minorUnits >= -largestSum && money.minorUnits <= largestSum;
  if (!fits) return std::nullopt;
  return money;
}

std::optional<NearestSums> nearestSums(std::string_view amount, const CurrencyCode& currency) {
  const auto decimals = static_cast<std::size_t>(minorDigits(currency));
  const std::size_t point = std::min(amount.find('.'), amount.size());
  const std::string_view fraction = amount.substr(std::min(point + 1, amount.size()));
  if (amount.starts_with('-') || amount.ends_with('.')) return std::nullopt;
  if (fraction.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const std::size_t kept = decimals == 0 ? 0 : std::min(fraction.size(), decimals) + 1;
  const auto atMost = moneyFromText(amount.substr(0, point + kept), currency);
  if (!atMost) return std::nullopt;
  const std::string_view cut = fraction.substr(std::min(fraction.size(), decimals));
  const bool isExact = cut.find_first_not_of('0') == std::string_view::npos;
  return NearestSums{*atMost, {atMost->minorUnits + (isExact ? 0 : 1), currency}};
}

}  // namespace kivo::money
