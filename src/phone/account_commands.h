// The commands of kivo-phone about the person: signing in and out, permission to notify, and how
// all of it stands.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

std::vector<linux_platform::Command> accountCommands();

}  // namespace kivo
