#include "recognition/payment_sentence.h"

#include <charconv>
#include <string>

#include "recognition/merchant_categories.h"
#include "recognition/name_text.h"

namespace kivo::recognition {

using money::moneyFromText;

namespace {

constexpr std::string_view digitsAndPoint = "0123456789.";

// "1.5e+16" as "15000000000000000", "1e-05" as "0.00001"; absent for text that is not a number.
std::optional<std::string> plainDecimal(std::string_view number) {
  constexpr int mostShifts = 30;
  const std::size_t mark = number.find('e');
  std::string plain(number.substr(0, mark));
  if (plain.empty() || plain.find_first_not_of(digitsAndPoint) != std::string::npos)
    return std::nullopt;
  std::size_t point = plain.find('.');
  if (point == std::string::npos)
    point = plain.size();
  else
    plain.erase(point, 1);
  if (mark != std::string_view::npos) {
    std::string_view exponent = number.substr(mark + 1);
    if (exponent.starts_with('+')) exponent.remove_prefix(1);
    int shift = 0;
    const auto [end, error] =
        std::from_chars(exponent.data(), exponent.data() + exponent.size(), shift);
    const bool whole = error == std::errc() && end == exponent.data() + exponent.size();
    if (!whole || shift > mostShifts || shift < -mostShifts) return std::nullopt;
    if (shift < 0) {
      plain.insert(0, static_cast<std::size_t>(-shift), '0');
    } else {
      plain.append(static_cast<std::size_t>(shift), '0');
      point += static_cast<std::size_t>(shift);
    }
  }
  plain.insert(point, 1, '.');
  while (plain.ends_with('0')) plain.pop_back();
  if (plain.ends_with('.')) plain.pop_back();
  return plain;
}

}  // namespace

std::optional<Reading> paymentSentence(std::string_view text,
                                       const money::CurrencyCode& bookCurrency) {
  constexpr std::string_view verb = "Paid ";
  constexpr std::string_view at = " at ";
  if (!text.starts_with(verb)) return std::nullopt;
  text.remove_prefix(verb.size());
  const std::size_t blank = text.find(' ');
  const std::size_t place = text.find(at, blank == std::string_view::npos ? blank : blank + 1);
  if (place == std::string_view::npos) return std::nullopt;
  const std::string_view currency = text.substr(blank + 1, place - blank - 1);
  const auto number = plainDecimal(text.substr(0, blank));
  if (!number || currency.find(' ') != std::string_view::npos) return std::nullopt;

  const money::CurrencyCode code =
      currency.empty() ? bookCurrency
                       : money::CurrencyCode::fromText(currency).value_or(money::CurrencyCode());
  Reading reading{.outcome = Outcome::transaction, .amount = moneyFromText(*number, code)};
  reading.payee = shownPayee(text.substr(place + at.size()));
  reading.description = reading.payee.empty() ? "Payment" : reading.payee;
  const std::string_view category = merchantCategory(reading.payee);
  reading.category = category.empty() ? "Other" : category;
  if (reading.amount && reading.amount->minorUnits <= 0) return Reading{};
  if (!reading.amount || code != bookCurrency) reading.outcome = Outcome::needsReview;
  return reading;
}

}  // namespace kivo::recognition
