// Prints the output of commands.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Prints `text` on standard output unchanged. Throws CommandFailure when it cannot be written.
void print(const std::string& text);

}  // namespace kivo::linux_platform
