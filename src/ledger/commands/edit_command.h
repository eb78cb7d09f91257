// The command of kivo-ledger that corrects transactions.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// edit.
linux_platform::Command editCommand();

}  // namespace kivo::ledger
