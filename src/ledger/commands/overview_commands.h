// The commands of kivo-ledger that show where the money went.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the commands `summary` and `report`.
std::vector<linux_platform::Command> overviewCommands();

}  // namespace kivo::ledger
