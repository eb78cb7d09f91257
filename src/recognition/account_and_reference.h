// Finds the digits of the person's own account, whether a transfer came into it, and the bank's
// reference in a message.
#pragma once

#include <string>

#include "money/kind.h"
#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The last digits of the person's own account or card, six at most; empty when none are shown.
std::string ownAccount(const AnalysedMessage& message, money::Kind kind);

/// Whether the sum of a transfer came into `account`, which `ownAccount` returned, as `message`
/// says by words such as "received" and "debited"; false when it does not say. `wordings` found
/// those of the message.
bool reachesAccount(const AnalysedMessage& message, const std::string& account,
                    const Wordings& wordings);

/// The reference behind words such as "Ref No", 40 bytes at most; empty when the message has no
/// reference.
std::string referenceIn(const AnalysedMessage& message);

}  // namespace kivo::recognition
