// Properties of the terminal at standard output.
#pragma once

#include <cstddef>

namespace kivo::linux_platform {

/// Whether standard output is a terminal.
bool onTerminal();

/// Returns the width of the terminal in columns; unlimited when standard output is not one.
std::size_t screenWidth();

}  // namespace kivo::linux_platform
