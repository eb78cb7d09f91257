// The commands of kivo-phone that show the home-screen widget.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo {

/// `widget` and `open`.
std::vector<linux_platform::Command> widgetCommands();

}  // namespace kivo
