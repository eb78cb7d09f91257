// The figures that the summaries of a month and of a year have in common, from the book.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "book/book.h"

namespace kivo::overview {

/// The sums booked in a period in one currency. A transfer is neither income nor expense.
struct MovedSums {
  explicit MovedSums(const money::CurrencyCode& currency)
      : expense{0, currency}, income{0, currency}, transfer{0, currency}, refunded{0, currency} {}
  /// Adds the sums of a group in the same currency.
  template <typename Group>
  void add(const book::GroupSum<Group>& group) {
    sumOf(group.kind) += group.sum;
    refunded += group.refunded;
    transactions += group.transactions;
  }
  /// Returns the income less the expense; below zero when more was spent.
  [[nodiscard]] money::Money saving() const;

  /// Less the refunds, so that it may be below zero.
  money::Money expense;
  money::Money income;
  /// Both halves of a transfer between own accounts count once.
  money::Money transfer;
  money::Money refunded;
  /// The number of transactions of any kind.
  std::int64_t transactions = 0;

 private:
  money::Money& sumOf(money::Kind kind);
};

/// The sums of a month.
struct MonthSums {
  money::Month month;
  MovedSums sums;
};

/// A period, and the one before it with which it is compared.
struct ComparedPeriods {
  money::Period period;
  money::Period before;
};

/// All sums are in `currency`, but for those of `otherCurrencies`: sums of different currencies are
/// never added.
struct PeriodSummary {
  /// The expenses of a category in this period and in the one before.
  struct Category {
    std::string name;
    money::Money expense;
    money::Money previous;
    /// The refunds in this period, by which `expense` is lessened.
    money::Money refunded = {};
  };
  struct Payee {
    std::string description;
    money::Money expense;
    std::int64_t transactions = 0;
    money::Money refunded = {};
  };

  /// Of a book kept in `bookCurrency`; without figures.
  explicit PeriodSummary(const money::CurrencyCode& bookCurrency)
      : currency(bookCurrency), sums(bookCurrency), previous(bookCurrency) {}

  money::CurrencyCode currency;
  MovedSums sums;
  /// The whole period before, also when this one still runs.
  MovedSums previous;
  /// The number of entries that wait in review, of any day.
  std::int64_t review = 0;
  /// The number of ignored messages that the book keeps.
  std::int64_t ignored = 0;
  /// The largest expense of this period first, then those of the period before alone.
  std::vector<Category> categories = {};
  /// The ten with the largest expenses, the largest first.
  std::vector<Payee> payees = {};
  /// The sums in each other currency, by code.
  std::vector<MovedSums> otherCurrencies = {};
  /// The entries whose amounts no sum counts: their ids, ascending.
  std::vector<std::int64_t> leftOut = {};

  /// Whether nothing was booked in this period, in any currency.
  [[nodiscard]] bool isEmpty() const { return sums.transactions == 0 && otherCurrencies.empty(); }
};

/// What is booked in a period, by name and month.
using NamedSums = std::vector<book::GroupSum<book::NameInMonth>>;

/// The sums of two compared periods together.
struct PeriodSums {
  NamedSums categories;
  NamedSums descriptions;
};

/// Returns the sums of `periods`, up to `largest` each.
PeriodSums sumsOf(const book::Book& book, const ComparedPeriods& periods, std::int64_t largest);

/// Reads the figures of `periods`, whose sums are `sums` and of which the book counts `counted`,
/// into `summary`.
void readPeriods(PeriodSummary& summary, const book::Book& book, const ComparedPeriods& periods,
                 const PeriodSums& sums, const book::Counted& counted);

/// The expenses of one name, less its refunds.
struct NamedExpense {
  std::string name;
  money::Money expense;
  std::int64_t transactions = 0;
  money::Money refunded = {};
};

/// Returns the expenses of the months of `period` among `sums` in `currency`, by `nameKey`.
std::map<std::string, NamedExpense> expensesByName(const NamedSums& sums,
                                                   const money::Period& period,
                                                   const money::CurrencyCode& currency);

/// Returns `name` in the form by which the book compares names.
std::string nameKey(std::string name);

/// Returns sentences that name the entries that are left out, and help; empty when there are none.
std::string leftOutNote(const std::vector<std::int64_t>& leftOut);

}  // namespace kivo::overview
