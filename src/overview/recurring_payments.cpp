#include "overview/recurring_payments.h"

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

namespace kivo::overview {

using book::Book;
using book::PayeeExpense;
using money::Day;
using money::Period;

namespace {

// A row of twelve, and the two months in which the last may still be late.
constexpr int monthsBack = 14;
constexpr std::size_t leastTimes = 3;
constexpr int soonDays = 7;

using Payments = std::vector<PayeeExpense>;

bool isAboutAMonthAfter(const Day& later, const Day& earlier) {
  const int late = later.daysSince(earlier.inNextMonth(earlier.number()));
  return -dueTolerance <= late && late <= dueTolerance;
}

bool isWithinAFifth(std::int64_t smallest, std::int64_t largest) {
  return largest - smallest <= largest / 5;
}

// The payments of about the sum of the one at `last` that are monthly up to it, the last one first:
// their places in `payments`, which are in the order of their days.
std::vector<std::size_t> rowUpTo(const Payments& payments, std::size_t last) {
  std::vector<std::size_t> row{last};
  std::int64_t smallest = payments[last].amount.minorUnits;
  std::int64_t largest = smallest;
  for (std::size_t at = last; at-- > 0;) {
    const std::int64_t units = payments[at].amount.minorUnits;
    const std::int64_t ofLast = payments[last].amount.minorUnits;
    if (!isWithinAFifth(std::min(units, ofLast), std::max(units, ofLast))) continue;
    smallest = std::min(smallest, units);
    largest = std::max(largest, units);
    if (!isWithinAFifth(smallest, largest)) break;
    if (!isAboutAMonthAfter(payments[row.back()].date, payments[at].date)) break;
    row.push_back(at);
  }
  return row;
}

// A month later, on the latest day of the month on which one of the row came if the last one came
// on the last day of a shorter month.
Day nextDay(const Payments& payments, const std::vector<std::size_t>& row) {
  const Day last = payments[row.front()].date;
  int number = last.number();
  if (number == last.month().days()) {
    for (const std::size_t at : row) number = std::max(number, payments[at].date.number());
  }
  return last.inNextMonth(number);
}

// Whether one of about the same sum came after it.
bool isFollowed(const Payments& payments, std::size_t last) {
  return std::any_of(payments.begin() + static_cast<std::ptrdiff_t>(last) + 1, payments.end(),
                     [&](const PayeeExpense& later) {
                       const auto [smallest, largest] =
                           std::minmax(later.amount.minorUnits, payments[last].amount.minorUnits);
                       return isWithinAFifth(smallest, largest);
                     });
}

void findIn(const Payments& payments, const Day& today, const Book& book,
            std::vector<RecurringPayment>& found) {
  for (std::size_t last = payments.size(); last-- >= leastTimes;) {
    const Day& day = payments[last].date;
    if (today.daysSince(day) > 2 * 31 + dueTolerance) return;
    if (isFollowed(payments, last)) continue;
    const auto row = rowUpTo(payments, last);
    if (row.size() < leastTimes) continue;
    const Day next = nextDay(payments, row);
    if (today > next.inNextMonth(next.number())) continue;
    const auto entry = book.entry(payments[last].id);
    if (!entry || !entry->amount) continue;
    found.push_back({.description = entry->description,
                     .category = entry->category,
                     .amount = *entry->amount,
                     .last = day,
                     .next = next,
                     .times = static_cast<std::int64_t>(row.size())});
  }
}

}  // namespace

std::vector<RecurringPayment> recurringPayments(const Book& book, const Day& today) {
  std::map<std::pair<std::string, money::CurrencyCode>, Payments> byPayee;
  const Period period{Period::of(today.month().before(monthsBack)).first, today};
  for (PayeeExpense& payment : book.expensesByDay(period)) {
    if (payment.payee.empty()) continue;
    byPayee[{payment.payee, payment.amount.currency}].push_back(std::move(payment));
  }
  std::vector<RecurringPayment> found;
  for (const auto& [payee, payments] : byPayee) findIn(payments, today, book, found);
  std::sort(found.begin(), found.end(), [](const auto& one, const auto& other) {
    return std::tie(one.next, one.description, one.amount.minorUnits) <
           std::tie(other.next, other.description, other.amount.minorUnits);
  });
  return found;
}

std::string dueWords(const RecurringPayment& payment, const Day& today) {
  const Day& next = payment.next;
  const int late = today.daysSince(next);
  if (late <= 0) {
    const bool isNear = next.month() == today.month() || -late <= soonDays;
    return isNear ? "is due on the " + ordinal(next.number()) : "";
  }
  if (late <= dueTolerance) return "was due on the " + ordinal(next.number());
  if (next.month() == today.month()) return "has not come this month";
  const std::string month = next.month().name();
  return "did not come in " + month.substr(0, month.find(' '));
}

std::string ordinal(int number) {
  const int tens = number / 10 % 10;
  const char* ending = "th";
  if (tens != 1 && number % 10 == 1) ending = "st";
  if (tens != 1 && number % 10 == 2) ending = "nd";
  if (tens != 1 && number % 10 == 3) ending = "rd";
  return std::to_string(number) + ending;
}

}  // namespace kivo::overview
