// The current day in the device's time zone.
#pragma once

#include <string>

namespace kivo::overview {

/// The current month and the current day, yyyy-MM and yyyy-MM-dd.
std::string currentMonth();
std::string currentDay();

}  // namespace kivo::overview
