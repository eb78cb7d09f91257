// The commands of kivo-ledger for messages that were not booked though they hold a sum.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the commands `ignored` and `book`.
std::vector<linux_platform::Command> ignoredCommands();

}  // namespace kivo::ledger
