// The running figures that the home-screen widget shows. Asks no widget to read them.
#pragma once

#include <cstdint>

#include "store/shared_store.h"

namespace kivo::WidgetStats {

/// Adds `amount`, with its sign, to today's total and to the running total in `store`, counts it as
/// one expense of today, and synchronizes. "Today" is the day of the device's locale, calendar and
/// time zone; on a new day the day's figures start afresh. Unreadable figures count as 0. A count
/// that cannot grow any more stops the process.
void recordExpense(SharedStore& store, double amount);

/// The figures that `store` holds under `key`; 0 when there is none that can be read.
double readTotal(const SharedStore& store, StoreKey key);
std::int64_t readCount(const SharedStore& store, StoreKey key);

/// The text of the present day, as `todayDateKey` holds it. Only ever compared with itself.
std::string today();

}  // namespace kivo::WidgetStats
