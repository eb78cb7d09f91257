// Selects the part of a message that reports a past event, without codes, offers, requests and
// announcements. Does not interpret it.
#pragma once

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// Whether the message announces a code, rather than only warns about codes beside a payment.
bool announcesACode(const AnalysedMessage& message);

/// The items of the sentences that report something. Joined, they are a message of their own.
Items reportedPart(const AnalysedMessage& message);

/// Whether `message` holds evidence of a movement, which an advertisement lacks: the digits of
/// an account, a date or time, a balance or a reference.
bool showsEvidence(const AnalysedMessage& message);

}  // namespace kivo::recognition
