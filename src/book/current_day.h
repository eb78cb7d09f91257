// The current day in the device's time zone.
#pragma once

#include "money/day.h"

namespace kivo::book {

money::Day currentDay();
money::Month currentMonth();

}  // namespace kivo::book
