// Days and months of the Gregorian calendar as texts.
#pragma once

#include <string_view>

namespace kivo::ledger {

/// Whether `text` is a day that exists, as yyyy-MM-dd.
bool isDay(std::string_view text);

/// Whether `text` is a month, as yyyy-MM.
bool isMonth(std::string_view text);

}  // namespace kivo::ledger
