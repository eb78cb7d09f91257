#include "overview/month_summary.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "money/calendar_day.h"
#include "overview/current_day.h"

namespace kivo::overview {

using book::Book;
using book::Counted;
using book::Grouping;
using book::GroupSum;
using money::firstDayOf;
using money::Kind;
using money::lastDayOf;
using money::monthBefore;

namespace {

constexpr std::size_t mostPayees = 10;

std::vector<GroupSum> sumsOf(const Book& book, Grouping grouping, const std::string& month,
                             std::int64_t largest) {
  return book.sums(grouping, firstDayOf(month), lastDayOf(month), largest);
}

bool isExpense(const GroupSum& group, const std::string& currency) {
  return group.kind == Kind::expense && group.sum.currency == currency;
}

void readTotals(MonthSummary& summary, const Book& book, std::int64_t largest) {
  std::map<std::string, MovedSums> others;
  const std::string before = monthBefore(summary.month);
  for (const GroupSum& group :
       book.sums(Grouping::month, firstDayOf(before), lastDayOf(summary.month), largest)) {
    const bool isOwn = group.sum.currency == summary.currency;
    if (group.group == before) {
      if (isOwn) summary.previous.add(group);
    } else {
      (isOwn ? summary.sums : others[group.sum.currency]).add(group);
    }
  }
  for (const auto& [currency, sums] : others) summary.otherCurrencies.push_back({currency, sums});
}

// As the book compares names.
std::string withoutCase(std::string name) {
  for (char& letter : name) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return name;
}

void readCategories(MonthSummary& summary, const Book& book, std::int64_t largest) {
  std::map<std::string, MonthSummary::Category> found;
  const auto read = [&](const std::string& month, std::int64_t MonthSummary::Category::*sum) {
    for (const GroupSum& group : sumsOf(book, Grouping::category, month, largest)) {
      if (!isExpense(group, summary.currency)) continue;
      MonthSummary::Category& category = found[withoutCase(group.group)];
      if (category.name.empty()) category.name = group.group;
      category.*sum = group.sum.minorUnits;
    }
  };
  read(summary.month, &MonthSummary::Category::expense);
  read(monthBefore(summary.month), &MonthSummary::Category::previous);
  for (const auto& [name, category] : found) summary.categories.push_back(category);
  std::sort(summary.categories.begin(), summary.categories.end(),
            [](const auto& one, const auto& other) {
              return std::tie(other.expense, other.previous, one.name) <
                     std::tie(one.expense, one.previous, other.name);
            });
}

void readPayees(MonthSummary& summary, const Book& book, std::int64_t largest) {
  for (const GroupSum& group : sumsOf(book, Grouping::description, summary.month, largest)) {
    if (!isExpense(group, summary.currency)) continue;
    summary.payees.push_back({group.group, group.sum.minorUnits, group.transactions});
  }
  std::sort(summary.payees.begin(), summary.payees.end(), [](const auto& one, const auto& other) {
    return std::tie(other.expense, one.description) < std::tie(one.expense, other.description);
  });
  if (summary.payees.size() > mostPayees) summary.payees.resize(mostPayees);
}

void readToday(MonthSummary& summary, const Book& book, std::int64_t largest) {
  const std::string date = currentDay();
  if (!date.starts_with(summary.month)) return;
  TodaysExpenses& today = summary.today.emplace();
  today.date = date;
  for (const GroupSum& group : book.sums(Grouping::day, date, date, largest)) {
    if (!isExpense(group, summary.currency)) continue;
    today.expense += group.sum.minorUnits;
    today.expenses += group.transactions;
  }
}

}  // namespace

void MovedSums::add(const GroupSum& group) {
  switch (group.kind) {
    case Kind::expense:
      expense += group.sum.minorUnits;
      break;
    case Kind::income:
      income += group.sum.minorUnits;
      break;
    case Kind::transfer:
      transfer += group.sum.minorUnits;
      break;
  }
  transactions += group.transactions;
}

MonthSummary summarize(const Book& book, const std::string& month, const std::string& currency) {
  return summarize(book, month, currency,
                   book.counted(firstDayOf(monthBefore(month)), lastDayOf(month)));
}

MonthSummary summarize(const Book& book, const std::string& month, const std::string& currency,
                       Counted counted) {
  MonthSummary summary;
  summary.month = month;
  summary.currency = currency;
  readTotals(summary, book, counted.largest);
  readCategories(summary, book, counted.largest);
  readPayees(summary, book, counted.largest);
  readToday(summary, book, counted.largest);
  summary.review = book.reviewCount();
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
