// The other party that a message names.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "recognition/message_items.h"
#include "recognition/reading.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// The name of the other party of a movement of `kind`, as `readable` (the text that `items` are
/// cut from) writes it; empty when it names none. A number, a masked account and the person's own
/// account are no names.
std::string payeeIn(std::string_view readable, const Items& items, std::span<const Found> found,
                    money::Kind kind);

}  // namespace kivo::recognition
