// The commands of kivo-ledger on a book of the server.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::server {

/// Returns `ledger::bookCommands` with the option --book, which names the book. `list` without it
/// runs `people`.
std::vector<linux_platform::Command> bookCommands(
    const std::string& version,
    const std::function<void(const linux_platform::GivenParameters&)>& people);

}  // namespace kivo::server
