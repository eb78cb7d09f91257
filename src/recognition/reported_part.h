// Selects the part of a message that reports a past event, without codes, offers, requests and
// announcements. Does not interpret it.
#pragma once

#include <span>
#include <vector>

#include "recognition/message_items.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// Whether the message announces a code, rather than only warns about codes beside a payment.
bool announcesACode(const Items& items, std::span<const Found> found);

/// The items of the sentences that report something. Joined, they are a message of their own.
Items reportedPart(const Items& items, std::span<const Found> found);

/// Returns whether `items` hold evidence of a movement, which an advertisement lacks: the digits of
/// an account, a date or time, a balance or a reference.
bool showsEvidence(const Items& items, std::span<const Found> found);

}  // namespace kivo::recognition
