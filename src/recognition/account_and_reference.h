// The account digits and the bank's reference that a message shows.
#pragma once

#include <span>
#include <string>

#include "recognition/message_items.h"
#include "recognition/reading.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// The last digits of the person's own account or card, six at most; empty when none are shown.
std::string ownAccount(const Items& items, std::span<const Found> found, money::Kind kind);

/// The reference behind words such as "Ref No", 40 bytes at most; empty when the message has no
/// reference.
std::string referenceIn(const Items& items, std::span<const Found> found,
                        std::string_view readable);

}  // namespace kivo::recognition
