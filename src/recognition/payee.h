// The other party that a message names.
#pragma once

#include <string>

#include "money/kind.h"
#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The name of the other party of an expense or income, as `message` writes it; empty when it names
/// none. A number, a masked account and the person's own account are no names.
std::string payeeIn(const AnalysedMessage& message, money::Kind kind);

}  // namespace kivo::recognition
