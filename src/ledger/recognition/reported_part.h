// The part of a message that reports what happened, without codes, offers, requests and what is to
// come. Does not say what happened.
#pragma once

#include <span>
#include <vector>

#include "ledger/recognition/message_items.h"
#include "ledger/recognition/wordings.h"

namespace kivo::ledger {

/// Whether the message announces a code, rather than only warns about codes beside a payment.
bool announcesACode(const Items& items, std::span<const Found> found);

/// The items of the sentences that report something. Joined, they are a message of their own.
Items reportedPart(const Items& items, std::span<const Found> found);

/// Whether `items` hold what a bank writes of a movement and leaves out of an advertisement: the
/// digits of an account, a date or time, a balance or a reference.
bool showsEvidence(const Items& items, std::span<const Found> found);

}  // namespace kivo::ledger
