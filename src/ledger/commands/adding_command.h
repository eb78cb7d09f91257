// The command of kivo-ledger that enters a payment by hand.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// add.
linux_platform::Command addingCommand();

}  // namespace kivo::ledger
