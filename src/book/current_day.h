// The current day, and those of other times, in the device's time zone.
#pragma once

#include <optional>

#include "money/day.h"
#include "platform/foundation/date.h"

namespace kivo::book {

money::Day currentDay();
/// Returns the day of `moment`; nullopt outside of the years 0 to 9999.
std::optional<money::Day> dayOf(platform::Moment moment);
money::Month currentMonth();

}  // namespace kivo::book
