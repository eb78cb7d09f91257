// The idempotency key of a message from a file.
#pragma once

#include <string>

#include "old_messages/old_message.h"

namespace kivo::old_messages {

/// Returns "import-", the time, "-" and a hash of sender, time and text, in hexadecimal: the same
/// for the same message of another file. Keys sort by time, so that those of a file are neighbours
/// in an index.
std::string keyOf(const OldMessage& message);

}  // namespace kivo::old_messages
