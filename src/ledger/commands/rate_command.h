// The command of kivo-ledger that shows and sets exchange rates.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// rate.
linux_platform::Command rateCommand();

}  // namespace kivo::ledger
