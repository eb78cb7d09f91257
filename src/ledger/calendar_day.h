// Checks dates and months that are written as texts.
#pragma once

#include <string_view>

namespace kivo::ledger {

/// Returns whether `text` is an existing day of the Gregorian calendar as yyyy-MM-dd.
bool isDay(std::string_view text);

/// Returns whether `text` is a month as yyyy-MM.
bool isMonth(std::string_view text);

}  // namespace kivo::ledger
