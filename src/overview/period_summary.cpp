#include "overview/period_summary.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "book/book_command.h"

namespace kivo::overview {

using book::Book;
using money::CurrencyCode;
using money::Kind;
using money::Money;
using money::Period;

namespace {

constexpr std::size_t mostPayees = 10;

void readTotals(PeriodSummary& summary, const NamedSums& categories,
                const ComparedPeriods& periods) {
  std::map<CurrencyCode, MovedSums> others;
  for (const auto& group : categories) {
    const CurrencyCode& currency = group.sum.currency;
    const bool isOwn = currency == summary.currency;
    const bool isBefore = group.group.month < periods.period.first.month();
    if (isBefore && !isOwn) continue;
    MovedSums& sums = !isOwn     ? others.try_emplace(currency, currency).first->second
                      : isBefore ? summary.previous
                                 : summary.sums;
    sums.add(group);
  }
  for (const auto& [currency, sums] : others) summary.otherCurrencies.push_back(sums);
}

void readCategories(PeriodSummary& summary, const NamedSums& categories,
                    const ComparedPeriods& periods) {
  const Money nothing{0, summary.currency};
  std::map<std::string, PeriodSummary::Category> found;
  const auto read = [&](const Period& period, Money PeriodSummary::Category::*sum) {
    for (const auto& [key, expense] : expensesByName(categories, period, summary.currency)) {
      const PeriodSummary::Category begun{expense.name, nothing, nothing, nothing};
      auto& category = found.try_emplace(key, begun).first->second;
      category.*sum = expense.expense;
      if (sum == &PeriodSummary::Category::expense) category.refunded = expense.refunded;
    }
  };
  read(periods.period, &PeriodSummary::Category::expense);
  read(periods.before, &PeriodSummary::Category::previous);
  for (const auto& [key, category] : found) summary.categories.push_back(category);
  std::sort(summary.categories.begin(), summary.categories.end(),
            [](const auto& one, const auto& other) {
              return std::tie(other.expense.minorUnits, other.previous.minorUnits, one.name) <
                     std::tie(one.expense.minorUnits, one.previous.minorUnits, other.name);
            });
}

void readPayees(PeriodSummary& summary, const NamedSums& descriptions, const Period& period) {
  for (const auto& [key, payee] : expensesByName(descriptions, period, summary.currency)) {
    summary.payees.push_back({payee.name, payee.expense, payee.transactions, payee.refunded});
  }
  std::sort(summary.payees.begin(), summary.payees.end(), [](const auto& one, const auto& other) {
    return std::tie(other.expense.minorUnits, one.description) <
           std::tie(one.expense.minorUnits, other.description);
  });
  if (summary.payees.size() > mostPayees) summary.payees.resize(mostPayees);
}

}  // namespace

Money& MovedSums::sumOf(Kind kind) {
  if (kind == Kind::expense) return expense;
  return kind == Kind::income ? income : transfer;
}

Money MovedSums::saving() const {
  return {income.minorUnits - expense.minorUnits, income.currency};
}

PeriodSums sumsOf(const Book& book, const ComparedPeriods& periods, std::int64_t largest) {
  const Period both{periods.before.first, periods.period.last};
  return {.categories = book.sumsByName(book::Names::category, both, largest),
          .descriptions = book.sumsByName(book::Names::description, both, largest)};
}

void readPeriods(PeriodSummary& summary, const Book& book, const ComparedPeriods& periods,
                 const PeriodSums& sums, const book::Counted& counted) {
  readTotals(summary, sums.categories, periods);
  readCategories(summary, sums.categories, periods);
  readPayees(summary, sums.descriptions, periods.period);
  summary.review = book.reviewCount();
  summary.ignored = book.ignoredCount();
  summary.leftOut = counted.leftOut;
}

std::map<std::string, NamedExpense> expensesByName(const NamedSums& sums, const Period& period,
                                                   const CurrencyCode& currency) {
  std::map<std::string, NamedExpense> found;
  for (const auto& group : sums) {
    if (group.kind != Kind::expense || group.sum.currency != currency) continue;
    const auto& [name, month] = group.group;
    if (month < period.first.month() || period.last.month() < month) continue;
    NamedExpense begun{.name = name, .expense = {0, currency}, .refunded = {0, currency}};
    NamedExpense& named = found.try_emplace(nameKey(name), std::move(begun)).first->second;
    named.expense += group.sum;
    named.transactions += group.transactions;
    named.refunded += group.refunded;
  }
  return found;
}

std::string nameKey(std::string name) {
  for (char& letter : name) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return name;
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
         ". " + book::bookCommand("edit ID --amount") + " corrects one.";
}

}  // namespace kivo::overview
