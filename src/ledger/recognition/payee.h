// The other party that a message names.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "ledger/recognition/message_items.h"
#include "ledger/recognition/reading.h"
#include "ledger/recognition/wordings.h"

namespace kivo::ledger {

/// The name of the other party of a movement of `kind`, as `readable` (the text that `items` are
/// cut from) writes it; empty when it names none. A number, a masked account and the person's own
/// account are no names.
std::string payeeIn(std::string_view readable, const Items& items, std::span<const Found> found,
                    Kind kind);

}  // namespace kivo::ledger
