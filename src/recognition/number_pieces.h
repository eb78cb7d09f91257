// Marks numbers that are not amounts: parts of dates, times of day, masked accounts, percentages
// and words.
#pragma once

#include "recognition/message_items.h"

namespace kivo::recognition {

/// Sets `isPiece` of the numbers that are parts of something else.
void markPieces(Items& items);

/// Whether the number at `at` is a part of a date or a time of day.
bool isDatePiece(const Items& items, std::size_t at);

/// Whether the item at `at` is the name of a month, whole or shortened; false behind the last item.
bool isMonth(const Items& items, std::size_t at);

}  // namespace kivo::recognition
