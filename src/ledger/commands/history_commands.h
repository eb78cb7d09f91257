// The commands that show and take back what the user changed.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns `undo` and `history`.
std::vector<linux_platform::Command> historyCommands();

}  // namespace kivo::ledger
