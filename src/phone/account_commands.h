// The commands of kivo-phone for signing in and out, the permission to notify, and the status.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

std::vector<linux_platform::Command> accountCommands();

}  // namespace kivo
