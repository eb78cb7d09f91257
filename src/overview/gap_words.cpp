#include "overview/gap_words.h"

#include "money/money.h"

namespace kivo::overview {

using money::Day;
using money::Money;

namespace {

std::string yearOf(const Day& day) { return day.text().substr(0, 4); }

// "November", with the year unless that is the year of `today`.
std::string monthOf(const Day& day, const Day& today) {
  const std::string name = day.month().name();
  return yearOf(day) == yearOf(today) ? name.substr(0, name.find(' ')) : name;
}

std::string gapDays(const Gap& gap, const Day& today) {
  if (gap.from == gap.to) return "on " + dayWords(gap.from, today);
  const std::string first = gap.from.month() == gap.to.month() ? std::to_string(gap.from.number())
                                                               : dayWords(gap.from, today);
  return "between " + first + " and " + dayWords(gap.to, today);
}

}  // namespace

std::string dayWords(const Day& day, const Day& today) {
  return std::to_string(day.number()) + " " + monthOf(day, today);
}

std::string gapWords(const Gap& gap, const money::CurrencyCode& currency, const Day& today) {
  const Money sum{gap.amount < 0 ? -gap.amount : gap.amount, currency};
  const std::string words = gap.amount < 0 ? " more than is booked " : " unexplained ";
  return currency.text() + " " + amountText(sum) + words + gapDays(gap, today);
}

}  // namespace kivo::overview
