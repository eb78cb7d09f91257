// Chooses the movement of money that a message reports, among those that its wordings, the signs of
// its sums and the places of its names tell.
#pragma once

#include "recognition/analysed_message.h"
#include "recognition/moved_sum.h"
#include "recognition/movements.h"

namespace kivo::recognition {

/// The movement that `message` reports; null without one. `openingDropped`: the first sentence of
/// the whole message does not count. Lives as long as the program.
const Movement* reportedMovement(const AnalysedMessage& message, const SumParts& sums,
                                 bool openingDropped);

}  // namespace kivo::recognition
