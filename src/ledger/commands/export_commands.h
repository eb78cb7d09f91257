// The command of kivo-ledger that writes the book in the formats of other programs.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the command `export`.
std::vector<linux_platform::Command> exportCommands();

}  // namespace kivo::ledger
