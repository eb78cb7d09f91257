// The commands of kivo-ledger that change the book.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// edit, accept, delete, forget-texts, rate.
std::vector<linux_platform::Command> editingCommands();

}  // namespace kivo::ledger
