// The commands on a book: all that kivo-ledger has but its service.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the commands in the order of their help, for the program of `version`. They use the book
/// and the settings of the folders of `linux_platform::dataHome` and `configHome` at the time of
/// their call.
std::vector<linux_platform::Command> bookCommands(const std::string& version);

}  // namespace kivo::ledger
