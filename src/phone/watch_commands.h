// The commands of kivo-phone that choose the senders whose messages are handed on.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

/// `watch add`, `watch remove` and `watch list`. They do not overwrite a settings file that cannot
/// be parsed.
std::vector<linux_platform::Command> watchCommands();

}  // namespace kivo
