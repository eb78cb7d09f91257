// Reads messages from CSV (RFC 4180) with the header date,sender,text.
#pragma once

#include "old_messages/old_message.h"

namespace kivo::old_messages {

/// Reads the file as a stream and calls `use` for each record. `momentFromCsv` reads the dates.
/// Lines end with LF or CRLF; a line break within quotes is part of the field; empty lines are left
/// out. Throws BrokenFile with the number of the line where a record begins that has not three
/// fields, a date that cannot be read, a quote that does not end, or more than 1 MiB. Throws
/// OtherFile when the first line is another one.
void readCsv(const ByteSource& bytes, const MessageUse& use);

}  // namespace kivo::old_messages
