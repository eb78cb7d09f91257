// The payments that come each month, such as a rent: computed from the book, and not stored.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "book/book.h"

namespace kivo::overview {

/// Expenses of one payee in one currency, of which each came about a month after the one before.
struct RecurringPayment {
  /// Those of the last payment.
  std::string description;
  std::string category;
  money::Money amount;
  /// The day of the last payment, and a month later: the day on which the next one is due.
  money::Day last;
  money::Day next;
  /// The number of payments in a row, up to fourteen months back.
  std::int64_t times = 0;
};

/// So many days before or after the same day of the month a payment is still monthly.
inline constexpr int dueTolerance = 3;

/// Returns the payments that came at least three times in a row, each a month after the one before,
/// give or take `dueTolerance` days, with sums of which the smallest is four fifths of the largest
/// or more. Other payments to the payee may lie between them when their sums differ by more.
/// Leaves out those that were due more than a month before `today`. In the order of the next day.
/// Takes a few queries: call it `atOneMoment` of the book.
std::vector<RecurringPayment> recurringPayments(const book::Book& book, const money::Day& today);

/// Returns when `payment` is due, as the words that follow its name: "is due on the 1st", "was due
/// on the 20th", "has not come this month", "did not come in October"; empty when it is due neither
/// in the month of `today` nor in the next seven days.
std::string dueWords(const RecurringPayment& payment, const money::Day& today);

/// Returns `number`, above zero, as an English ordinal: "1st", "12th", "23rd".
std::string ordinal(int number);

}  // namespace kivo::overview
