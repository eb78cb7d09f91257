// The commands of kivo-ledger that only read the book.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// list, review, show.
std::vector<linux_platform::Command> listingCommands();

}  // namespace kivo::ledger
