// The command of kivo-ledger that teaches it a bank's wording.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the command `teach`.
linux_platform::Command teachCommand();

}  // namespace kivo::ledger
