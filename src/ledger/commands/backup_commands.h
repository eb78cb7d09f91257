// The commands `backup` and `restore` of kivo-ledger.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the commands. `version` is the program's, which a backup names.
std::vector<linux_platform::Command> backupCommands(const std::string& version);

}  // namespace kivo::ledger
