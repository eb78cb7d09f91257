#include "recognition/amount_digits.h"

#include <algorithm>
#include <string>
#include <vector>

#include "money/currencies.h"
#include "money/money.h"

namespace kivo::recognition {

using money::Currency;
using money::currencyByCode;
using money::moneyFromText;

namespace {

money::CurrencyCode codeOf(std::string_view text) {
  return money::CurrencyCode::fromText(text).value_or(money::CurrencyCode());
}

int decimalsOf(std::string_view code) { return minorDigits(codeOf(code)); }

struct Groups {
  std::vector<std::string_view> digits;  // between the separators
  std::string separators;
};

Groups groupsOf(std::string_view amount) {
  Groups groups;
  std::size_t begin = 0;
  for (std::size_t at = 0; at <= amount.size(); ++at) {
    if (at < amount.size() && amount[at] >= '0' && amount[at] <= '9') continue;
    groups.digits.push_back(amount.substr(begin, at - begin));
    if (at < amount.size()) groups.separators += amount[at];
    begin = at + 1;
  }
  return groups;
}

// Whether the first `count` groups are thousands ("1,234,567") or lakhs ("1,50,000"), written with
// one separator.
bool areThousands(const Groups& groups, std::size_t count) {
  if (count == 1) return true;
  const std::string_view separators = std::string_view(groups.separators).substr(0, count - 1);
  if (separators.find_first_not_of(separators.front()) != std::string_view::npos) return false;
  if (groups.digits[0].empty() || groups.digits[0].size() > 3 || groups.digits[0][0] == '0') {
    return false;
  }
  if (groups.digits[count - 1].size() != 3) return false;
  const auto inner = [&](std::size_t size) {
    return std::all_of(groups.digits.begin() + 1,
                       groups.digits.begin() + static_cast<std::ptrdiff_t>(count) - 1,
                       [size](std::string_view group) { return group.size() == size; });
  };
  return inner(3) || (inner(2) && groups.digits[0].size() <= 2);
}

enum class LastSeparator { groups, isDecimal, unclear };

bool isZeros(std::string_view digits) {
  return digits.find_first_not_of('0') == std::string_view::npos;
}

bool groupsByPoints(std::string_view code) {
  const Currency* const currency = currencyByCode(code);
  return currency != nullptr && currency->pointGroups;
}

// The separator in front of three digits that are no group of thousands: "0.500", "1234,500",
// "01,500".
LastSeparator notOfThousands(const Groups& groups, std::string_view code) {
  const std::string_view whole = groups.digits.front();
  if (whole.empty() || whole == "0") return LastSeparator::isDecimal;
  if (whole.front() == '0') return LastSeparator::unclear;
  const bool usual = groups.separators.back() == (groupsByPoints(code) ? ',' : '.');
  return usual || decimalsOf(code) == 3 ? LastSeparator::isDecimal : LastSeparator::unclear;
}

LastSeparator onlySeparator(const Groups& groups, std::string_view code) {
  constexpr std::size_t group = 3;
  const std::string_view fraction = groups.digits.back();
  const char separator = groups.separators.back();
  const bool mayGroup = areThousands(groups, 2);
  if (separator == '\'') return mayGroup ? LastSeparator::groups : LastSeparator::unclear;
  const int decimals = decimalsOf(code);
  if (fraction.size() > group) {  // "12.5000"; but "1,0000" might be ten thousand
    const bool decimal = separator == '.' && decimals > 0 && !groupsByPoints(code);
    return decimal ? LastSeparator::isDecimal : LastSeparator::unclear;
  }
  if (fraction.size() < group) return LastSeparator::isDecimal;
  if (!mayGroup) return notOfThousands(groups, code);
  if (separator == ',') {
    const Currency* const currency = currencyByCode(code);
    return currency != nullptr && currency->commaDecimal ? LastSeparator::isDecimal
                                                         : LastSeparator::groups;
  }
  if (decimals == 3) return LastSeparator::isDecimal;
  if (decimals == 0 || groupsByPoints(code)) return LastSeparator::groups;
  // "Rs. 5.000" is five rupees with a redundant zero; "Rs. 5.250" might be 5,250 rupees.
  return isZeros(fraction) ? LastSeparator::isDecimal : LastSeparator::unclear;
}

LastSeparator lastSeparator(const Groups& groups, std::string_view code) {
  const std::size_t count = groups.digits.size();
  if (count == 1) return LastSeparator::groups;
  if (count == 2) return onlySeparator(groups, code);
  const std::string_view fraction = groups.digits.back();
  const char separator = groups.separators.back();
  const bool same = separator == groups.separators[count - 3];
  if (same && areThousands(groups, count)) return LastSeparator::groups;
  // In "55.000.00" the last point is a decimal point; "1,000,00" might be lakhs.
  if (same && (separator != '.' || fraction.size() != 2)) return LastSeparator::unclear;
  if (separator == '\'' || (separator == ',' && fraction.size() > 3)) return LastSeparator::unclear;
  return areThousands(groups, count - 1) ? LastSeparator::isDecimal : LastSeparator::unclear;
}

}  // namespace

std::optional<std::int64_t> minorUnitsOf(std::string_view amount, std::string_view currency) {
  if (amount.find_first_not_of("0123456789.,'") != std::string_view::npos) return std::nullopt;
  const Groups groups = groupsOf(amount);
  const LastSeparator last = lastSeparator(groups, currency);
  if (last == LastSeparator::unclear) return std::nullopt;
  const std::size_t count = groups.digits.size();
  const std::size_t wholes = last == LastSeparator::isDecimal ? count - 1 : count;
  std::string plain;
  for (std::size_t at = 0; at < wholes; ++at) plain += groups.digits[at];
  if (plain.empty()) plain = "0";
  if (last == LastSeparator::isDecimal) {
    std::string_view fraction = groups.digits.back();
    const auto decimals = static_cast<std::size_t>(decimalsOf(currency));
    while (fraction.size() > decimals && fraction.ends_with('0')) fraction.remove_suffix(1);
    if (!fraction.empty()) plain.append(".").append(fraction);
  }
  const auto money = moneyFromText(plain, codeOf(currency));
  if (!money) return std::nullopt;
  return money->minorUnits;
}

}  // namespace kivo::recognition
