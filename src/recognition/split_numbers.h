// Recognises numbers that may be parts of a larger one, split by a blank or a mark.
#pragma once

#include <cstddef>

#include "recognition/message_items.h"

namespace kivo::recognition {

/// Whether the number at `number` may continue the one before it, as the "00" of "500 00 EGP" does.
bool followsGroup(const Items& items, std::size_t number);

/// Whether the number from item `number` to item `last` may continue behind it, or a mark joins it
/// to another: "500 00", "1, 000", "1-000". `markPieces` must have run on `items`.
bool isPartOfNumber(const Items& items, std::size_t number, std::size_t last);

}  // namespace kivo::recognition
