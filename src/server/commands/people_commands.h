// The commands that say who may reach which book.
#pragma once

#include <vector>

#include "platform/linux/terminal/command_line.h"

namespace kivo::server {

/// `book add`, `person add`, `person remove`, `device add` and `device revoke`.
std::vector<linux_platform::Command> peopleCommands();

/// Prints all books, people and devices; as JSON when --json was given. Throws Failure, and
/// BadUsage when options for payments were given.
void listPeople(const linux_platform::GivenParameters& given);

}  // namespace kivo::server
