// What `kivo-phone queue` does: shows, exports and drops the texts that wait. Sends none.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

/// The command `queue` and those of its group.
std::vector<linux_platform::Command> queueCommands();

}  // namespace kivo
