// The idempotency key of a message from a file.
#pragma once

#include <string>

#include "old_messages/old_message.h"

namespace kivo::old_messages {

/// Returns "import-" and a hash of sender, time and text, in hexadecimal: the same for the same
/// message of another file.
std::string keyOf(const OldMessage& message);

}  // namespace kivo::old_messages
