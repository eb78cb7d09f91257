// Updates and restarts the totals that the home-screen widget shows. Does not reload the widget.
#pragma once

#include <cstdint>

#include "store/shared_store.h"

namespace kivo::WidgetStats {

/// Adds `amount`, with its sign, to today's total and to the running total in `store`, increments
/// today's count, and synchronizes. "Today" is the day of the device's locale, calendar and time
/// zone; on a new day its total and count restart. Totals that cannot be parsed count as 0. Stops
/// the process when the count would overflow.
void recordExpense(SharedStore& store, double amount);

/// Whether one of the totals or today's count in `store` is not zero.
bool anyIsCounted(const SharedStore& store);

/// Writes zero for both totals and today's count. Does not synchronize.
void restart(SharedStore& store);

/// Reads the figure under `key`; 0 when it is absent or cannot be parsed.
double readTotal(const SharedStore& store, StoreKey key);
std::int64_t readCount(const SharedStore& store, StoreKey key);

/// Returns the current day in the form of `todayDateKey`. Compare it only with other values of this
/// function: calendar and digits are those of the device's locale.
std::string today();

}  // namespace kivo::WidgetStats
