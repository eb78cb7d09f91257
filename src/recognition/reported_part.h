// Selects the sentences of a message that report a movement of money or a refusal, and leaves out
// offers, requests and announcements. Does not interpret them.
#pragma once

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// Whether `message` tells the reader a code. A message about a payment may warn about codes; that
/// alone is not an announcement.
bool announcesACode(const AnalysedMessage& message);

/// The items of the sentences that count, joined.
Items reportedPart(const AnalysedMessage& message);

/// Whether `message` holds evidence of a movement, which an advertisement lacks: the digits of
/// an account, a date or time, a balance or a reference.
bool showsEvidence(const AnalysedMessage& message);

}  // namespace kivo::recognition
