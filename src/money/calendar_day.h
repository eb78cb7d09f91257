// Checks dates and months that are written as texts.
#pragma once

#include <string>
#include <string_view>

namespace kivo::money {

/// Returns whether `text` is an existing day of the Gregorian calendar as yyyy-MM-dd.
bool isDay(std::string_view text);

/// Returns whether `text` is a month as yyyy-MM.
bool isMonth(std::string_view text);

/// The month that is `count` months before `month`, both yyyy-MM.
std::string monthBefore(std::string_view month, int count = 1);

/// A bound for the days of `month`, yyyy-MM, when days are compared as texts; the last one need not
/// exist.
std::string firstDayOf(const std::string& month);
std::string lastDayOf(const std::string& month);

/// The number of days of `month`, yyyy-MM.
int daysOf(std::string_view month);

/// `month`, yyyy-MM, in words: "November 2026".
std::string monthName(std::string_view month);

}  // namespace kivo::money
