// How the commands of kivo-phone speak to the person. Asks nothing.
#pragma once

#include <string>

#include "platform/linux/terminal/screen.h"

namespace kivo {

/// What the program is called.
inline constexpr const char* phoneProgramName = "kivo-phone";

/// The exit status of a command that could not do what it was told.
inline constexpr int exitFailure = 1;

/// Writes `what` as one line on standard error, after the program's name; yields `status`.
int fail(const std::string& what, int status = exitFailure);

/// `exitFailure`, for a shared store that cannot be opened. Opening it has said why.
int failWithoutStore();

/// Writes `text` on standard output as it is; yields 0, or `fail` when that cannot be done.
int print(const std::string& text);

using linux_platform::onTerminal;
using linux_platform::screenWidth;

/// Whether standard output is a terminal that obeys escape sequences: TERM is neither unset nor
/// dumb.
bool terminalObeysEscapes();

/// Whether standard output shows bold text, and the person did not decline that with NO_COLOR.
bool terminalShowsStyles();

}  // namespace kivo
