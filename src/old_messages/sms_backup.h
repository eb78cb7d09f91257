// Reads the XML of "SMS Backup & Restore", an Android app.
#pragma once

#include "old_messages/old_message.h"

namespace kivo::old_messages {

/// Reads the file as a stream and calls `use` for each received SMS. Sent ones, drafts and MMS are
/// left out. An SMS without a text has an empty one. Uses memory for the SMS of one piece of
/// `bytes` and for one tag, 32 MiB at most. Throws BrokenFile with the line of the error, and
/// OtherFile when the file is XML of another kind.
void readSmsBackup(const ByteSource& bytes, const MessageUse& use);

}  // namespace kivo::old_messages
