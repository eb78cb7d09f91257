// The terminal at standard output. Writes nothing.
#pragma once

#include <cstddef>

namespace kivo::linux_platform {

/// Whether standard output is a terminal.
bool onTerminal();

/// How many columns standard output shows in a line; without end where it is no terminal.
std::size_t screenWidth();

}  // namespace kivo::linux_platform
