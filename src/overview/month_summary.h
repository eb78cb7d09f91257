// The figures of a month, from the book. Shows nothing: SummaryView and ReportPage do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "book/book.h"

namespace kivo::overview {

/// The sums booked in a period in one currency. A transfer is neither income nor expense.
struct MovedSums {
  explicit MovedSums(const money::CurrencyCode& currency)
      : expense{0, currency}, income{0, currency}, transfer{0, currency} {}
  /// Adds `sum`, in the same currency, of so many transactions.
  void add(money::Kind kind, const money::Money& sum, std::int64_t count);

  money::Money expense;
  money::Money income;
  money::Money transfer;
  /// The number of transactions of any kind.
  std::int64_t transactions = 0;
};

/// The expenses of the current day.
struct TodaysExpenses {
  money::Day date;
  money::Money expense;
  std::int64_t expenses = 0;
};

/// All sums are in `currency`, but for those of `otherCurrencies`: sums of different currencies are
/// never added.
struct MonthSummary {
  /// The expenses of a category in this month and in the month before.
  struct Category {
    std::string name;
    money::Money expense;
    money::Money previous;
  };
  struct Payee {
    std::string description;
    money::Money expense;
    std::int64_t transactions = 0;
  };

  /// Of `ofMonth` in a book kept in `bookCurrency`; without figures.
  MonthSummary(const money::Month& ofMonth, const money::CurrencyCode& bookCurrency)
      : month(ofMonth), currency(bookCurrency), sums(bookCurrency), previous(bookCurrency) {}

  money::Month month;
  money::CurrencyCode currency;
  MovedSums sums;
  /// The whole month before, also when this one still runs.
  MovedSums previous;
  /// The number of entries that wait in review, of any month.
  std::int64_t review = 0;
  /// The number of ignored messages that the book keeps.
  std::int64_t ignored = 0;
  /// The largest expense of this month first, then those of the month before alone.
  std::vector<Category> categories = {};
  /// The ten with the largest expenses, the largest first.
  std::vector<Payee> payees = {};
  /// The sums in each other currency, by code.
  std::vector<MovedSums> otherCurrencies = {};
  /// Absent unless the month is the current one.
  std::optional<TodaysExpenses> today = {};
  /// The entries whose amounts no sum counts: their ids, ascending.
  std::vector<std::int64_t> leftOut = {};

  /// Whether nothing was booked in this month, in any currency.
  [[nodiscard]] bool isEmpty() const { return sums.transactions == 0 && otherCurrencies.empty(); }
};

/// Reads the figures of `month` of a book kept in `currency`. Takes a few queries: call it
/// `atOneMoment` of the book.
MonthSummary summarize(const book::Book& book, const money::Month& month,
                       const money::CurrencyCode& currency);
/// Does so for a period that includes the month and the one before, of which the book counts
/// `counted`.
MonthSummary summarize(const book::Book& book, const money::Month& month,
                       const money::CurrencyCode& currency, book::Counted counted);

/// Returns sentences that name the entries that are left out, and help; empty when there are none.
std::string leftOutNote(const std::vector<std::int64_t>& leftOut);

}  // namespace kivo::overview
