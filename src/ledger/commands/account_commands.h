// The commands of kivo-ledger for the user's own accounts.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// accounts, accounts name, accounts credit.
std::vector<linux_platform::Command> accountCommands();

}  // namespace kivo::ledger
