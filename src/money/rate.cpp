#include "money/rate.h"

#include <algorithm>

namespace kivo::money {
namespace {

__extension__ typedef unsigned __int128 Wide;

Wide powerOfTen(int exponent) {
  Wide power = 1;
  for (; exponent > 0; --exponent) power *= 10;
  return power;
}

}  // namespace

std::optional<Rate> Rate::fromText(std::string_view text) {
  std::int64_t digits = 0;
  std::size_t count = 0;
  std::optional<std::size_t> point;
  for (const char character : text) {
    if (character == '.' && !point) {
      point = count;
      continue;
    }
    if (character < '0' || character > '9' || ++count > mostDigits) return std::nullopt;
    digits = digits * 10 + (character - '0');
  }
  if (digits == 0) return std::nullopt;
  return Rate(digits, static_cast<int>(count - point.value_or(count)));
}

std::string Rate::text() const {
  std::string text = std::to_string(digits_);
  const auto decimals = static_cast<std::size_t>(decimals_);
  if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
  if (decimals > 0) text.insert(text.size() - decimals, 1, '.');
  return text;
}

std::optional<Money> Rate::convert(const Money& sum, const CurrencyCode& currency) const {
  if (!isBookable(sum)) return std::nullopt;
  // At most 2 to the 53rd, 10 to the 18th and, for the decimals of currencies, 10 to the 4th: 124
  // bits.
  const int shift = decimals_ + minorDigits(sum.currency) - minorDigits(currency);
  const Wide product =
      static_cast<Wide>(sum.minorUnits) * static_cast<Wide>(digits_) * powerOfTen(-shift);
  const Wide divisor = powerOfTen(shift);
  const bool up = product % divisor * 2 >= divisor;
  const Wide units = product / divisor + (up ? 1 : 0);
  if (units > static_cast<Wide>(largestSum)) return std::nullopt;
  Money converted{static_cast<std::int64_t>(units), currency};
  if (!isBookable(converted)) return std::nullopt;
  return converted;
}

}  // namespace kivo::money
