#include "overview/month_summary.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "book/current_day.h"

namespace kivo::overview {

using book::Book;
using book::Counted;
using book::currentDay;
using book::GroupSum;
using money::CurrencyCode;
using money::Kind;
using money::Money;
using money::Month;
using money::Period;

namespace {

constexpr std::size_t mostPayees = 10;

template <typename Group>
bool isExpense(const GroupSum<Group>& group, const CurrencyCode& currency) {
  return group.kind == Kind::expense && group.sum.currency == currency;
}

void readTotals(MonthSummary& summary, const Book& book, std::int64_t largest) {
  std::map<CurrencyCode, MovedSums> others;
  const Month before = summary.month.before();
  for (const auto& group : book.sumsByMonth(Period::of(before, summary.month), largest)) {
    const CurrencyCode& currency = group.sum.currency;
    const bool isOwn = currency == summary.currency;
    if (group.group == before && !isOwn) continue;
    MovedSums& sums = !isOwn                  ? others.try_emplace(currency, currency).first->second
                      : group.group == before ? summary.previous
                                              : summary.sums;
    sums.add(group.kind, group.sum, group.transactions);
  }
  for (const auto& [currency, sums] : others) summary.otherCurrencies.push_back(sums);
}

// As the book compares names.
std::string withoutCase(std::string name) {
  for (char& letter : name) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return name;
}

void readCategories(MonthSummary& summary, const Book& book, std::int64_t largest) {
  const Money nothing{0, summary.currency};
  std::map<std::string, MonthSummary::Category> found;
  const auto read = [&](const Month& month, Money MonthSummary::Category::*sum) {
    for (const auto& group : book.sumsByName(book::Names::category, Period::of(month), largest)) {
      if (!isExpense(group, summary.currency)) continue;
      const MonthSummary::Category begun{group.group, nothing, nothing};
      found.try_emplace(withoutCase(group.group), begun).first->second.*sum = group.sum;
    }
  };
  read(summary.month, &MonthSummary::Category::expense);
  read(summary.month.before(), &MonthSummary::Category::previous);
  for (const auto& [name, category] : found) summary.categories.push_back(category);
  std::sort(summary.categories.begin(), summary.categories.end(),
            [](const auto& one, const auto& other) {
              return std::tie(other.expense.minorUnits, other.previous.minorUnits, one.name) <
                     std::tie(one.expense.minorUnits, one.previous.minorUnits, other.name);
            });
}

void readPayees(MonthSummary& summary, const Book& book, std::int64_t largest) {
  const Period period = Period::of(summary.month);
  for (const auto& group : book.sumsByName(book::Names::description, period, largest)) {
    if (!isExpense(group, summary.currency)) continue;
    summary.payees.push_back({group.group, group.sum, group.transactions});
  }
  std::sort(summary.payees.begin(), summary.payees.end(), [](const auto& one, const auto& other) {
    return std::tie(other.expense.minorUnits, one.description) <
           std::tie(one.expense.minorUnits, other.description);
  });
  if (summary.payees.size() > mostPayees) summary.payees.resize(mostPayees);
}

void readToday(MonthSummary& summary, const Book& book, std::int64_t largest) {
  const money::Day date = currentDay();
  if (date.month() != summary.month) return;
  TodaysExpenses& today = summary.today.emplace(TodaysExpenses{date, {0, summary.currency}});
  for (const auto& group : book.sumsByDay({date, date}, largest)) {
    if (!isExpense(group, summary.currency)) continue;
    today.expense += group.sum;
    today.expenses += group.transactions;
  }
}

}  // namespace

void MovedSums::add(Kind kind, const Money& sum, std::int64_t count) {
  switch (kind) {
    case Kind::expense:
      expense += sum;
      break;
    case Kind::income:
      income += sum;
      break;
    case Kind::transfer:
      transfer += sum;
      break;
  }
  transactions += count;
}

MonthSummary summarize(const Book& book, const Month& month, const CurrencyCode& currency) {
  return summarize(book, month, currency, book.counted(Period::of(month.before(), month)));
}

MonthSummary summarize(const Book& book, const Month& month, const CurrencyCode& currency,
                       Counted counted) {
  MonthSummary summary(month, currency);
  readTotals(summary, book, counted.largest);
  readCategories(summary, book, counted.largest);
  readPayees(summary, book, counted.largest);
  readToday(summary, book, counted.largest);
  summary.review = book.reviewCount();
  summary.ignored = book.ignoredCount();
  summary.leftOut = std::move(counted.leftOut);
  return summary;
}

std::string leftOutNote(const std::vector<std::int64_t>& leftOut) {
  if (leftOut.empty()) return "";
  constexpr std::size_t mostIds = 10;
  std::string ids;
  for (std::size_t at = 0; at < std::min(leftOut.size(), mostIds); ++at) {
    ids += (at == 0 ? "" : ", ") + std::to_string(leftOut[at]);
  }
  if (leftOut.size() > mostIds) {
    ids += " and " + std::to_string(leftOut.size() - mostIds) + " more";
  }
  return "Left out of the sums, since their amounts are too large or not above zero: " + ids +
         ". kivo-ledger edit ID --amount corrects one.";
}

}  // namespace kivo::overview
