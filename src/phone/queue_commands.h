// The `kivo-phone queue` commands, which show, send, export and drop the queued texts.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

/// The command `queue` and those of its group.
std::vector<linux_platform::Command> queueCommands();

}  // namespace kivo
