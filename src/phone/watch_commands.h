// The commands of kivo-phone that name whose messages are handed on. Hands on none.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

/// `watch add`, `watch remove` and `watch list`. Each says on standard error why it could do
/// nothing, and none overwrites a settings file that cannot be read.
std::vector<linux_platform::Command> watchCommands();

}  // namespace kivo
