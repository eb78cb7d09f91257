#include "app/sum_texts.h"

namespace kivo::app {

const overview::SumFormat& SumTexts::of(const money::CurrencyCode& currency) {
  return formats_.try_emplace(currency.text(), currency).first->second;
}

std::string SumTexts::text(const book::LedgerEntry& entry) {
  if (!entry.amount) return "?";
  return (entry.kind == money::Kind::income ? "+" : "") + text(*entry.amount);
}

std::string dayName(const money::Day& day, const money::Day& today) {
  if (day == today) return "Today";
  if (day == today.before(1)) return "Yesterday";
  return std::to_string(day.number()) + " " + day.month().name();
}

std::string shortDayName(const money::Day& day) {
  const std::string month = day.month().name();
  return std::to_string(day.number()) + " " + month.substr(0, month.find(' '));
}

}  // namespace kivo::app
