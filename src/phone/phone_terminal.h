// Output and exit statuses of the kivo-phone commands.
#pragma once

#include <string>

#include "platform/linux/terminal/screen.h"

namespace kivo {

/// The program's name.
inline constexpr const char* phoneProgramName = "kivo-phone";

/// The exit status of a command that failed.
inline constexpr int exitFailure = 1;

/// Prints `what` as one line on standard error, after the program's name; returns `status`.
int fail(const std::string& what, int status = exitFailure);

/// Returns `exitFailure` when the shared store cannot be opened. Opening it has printed the reason.
int failWithoutStore();

/// Prints `text` on standard output unchanged; returns 0, or `fail` when that fails.
int print(const std::string& text);

using linux_platform::onTerminal;
using linux_platform::screenWidth;
using linux_platform::terminalObeysEscapes;
using linux_platform::terminalShowsStyles;

}  // namespace kivo
