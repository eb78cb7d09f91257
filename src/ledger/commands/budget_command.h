// The command of kivo-ledger that shows and sets budgets.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// budget.
linux_platform::Command budgetCommand();

}  // namespace kivo::ledger
