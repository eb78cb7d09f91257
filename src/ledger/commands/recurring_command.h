// The command of kivo-ledger that lists the payments that come each month.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the command `recurring`.
linux_platform::Command recurringCommand();

}  // namespace kivo::ledger
