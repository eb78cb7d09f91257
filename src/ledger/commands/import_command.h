// The command of kivo-ledger that books old messages from files.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// import.
linux_platform::Command importCommand();

}  // namespace kivo::ledger
