// The parts of a message that are proposed to a user who teaches it. Asks nothing.
#pragma once

#include <optional>
#include <string_view>

#include "book/ledger_entry.h"
#include "recognition/templates/teaching.h"

namespace kivo::recording {

/// Returns the parts of `message` as `entry`, its entry, has them, or else as the rules read them
/// for a book in `currency`: those that `message` holds. The amount is else its first sum.
recognition::TaughtParts proposedParts(std::string_view message,
                                       const std::optional<book::LedgerEntry>& entry,
                                       const money::CurrencyCode& currency);

}  // namespace kivo::recording
