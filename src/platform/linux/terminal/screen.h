// Properties of the terminal at standard output.
#pragma once

#include <cstddef>

namespace kivo::linux_platform {

/// Whether standard output is a terminal.
bool onTerminal();

/// Whether standard output is a terminal that supports escape sequences: TERM is neither unset nor
/// dumb.
bool terminalObeysEscapes();

/// Whether standard output supports bold text and colours, and NO_COLOR is not set.
bool terminalShowsStyles();

/// Returns the width of the terminal in columns; unlimited when standard output is not one.
std::size_t screenWidth();

}  // namespace kivo::linux_platform
