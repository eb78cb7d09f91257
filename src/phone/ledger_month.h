// The current month and day as the ledger on this machine has them. Does not open the book:
// kivo-ledger does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

/// The figures of the book that the widget and the status show. Sums are exact, in the book's
/// currency and the device's locale.
struct LedgerMonth {
  /// The sum of the month's expenses.
  std::string expenses;
  /// The sum and the number of today's expenses.
  std::string todayTotal;
  std::int64_t todayCount = 0;
  /// The number of entries in review, of any month.
  std::int64_t toReview = 0;
  /// The ids of the entries of this month and the one before that no sum counts, as "3, 12"; empty
  /// when there are none.
  std::string leftOut = {};

  /// Runs `kivo-ledger summary`. Blocks for at most 1 s. Returns nullopt after that, and when
  /// the program fails or prints something else; its errors are not shown.
  static std::optional<LedgerMonth> ask();

  /// Returns the figures in `summary`, the JSON that `kivo-ledger summary` prints; nullopt when
  /// they are not in it.
  static std::optional<LedgerMonth> fromSummary(std::string_view summary);

  bool operator==(const LedgerMonth&) const = default;
};

}  // namespace kivo
