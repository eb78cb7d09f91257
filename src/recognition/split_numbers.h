// Numbers that may be parts of a larger one, which a blank or a mark has split. Reads no digits.
#pragma once

#include <cstddef>

#include "recognition/message_items.h"

namespace kivo::recognition {

/// Whether the number at `number` may go on the one before it, as the "00" of "500 00 EGP".
bool followsGroup(const Items& items, std::size_t number);

/// Whether the number from item `number` to item `last` may go on behind, or is one of two that a
/// mark joins: "500 00", "1, 000", "1-000". The pieces of dates and the like must be marked.
bool isPartOfNumber(const Items& items, std::size_t number, std::size_t last);

}  // namespace kivo::recognition
