// Finds the payee that a message names: the other party of a payment, whichever way the money
// moves.
#pragma once

#include <string>

#include "money/kind.h"
#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The payee of an expense or income as `message` writes it; empty when it names none. A number, a
/// masked account and the person's own account are not payees.
std::string payeeIn(const AnalysedMessage& message, money::Kind kind);

/// The agent who paid out cash, or the bank's machine with a name of its own, "OTP Bank ATM"; empty
/// when `message` names neither.
std::string agentIn(const AnalysedMessage& message);

}  // namespace kivo::recognition
