// The commands of kivo-ledger that list, add and remove rules for payees.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// rules, rules add, rules remove.
std::vector<linux_platform::Command> ruleCommands();

}  // namespace kivo::ledger
