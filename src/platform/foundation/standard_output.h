// Prints lines on standard output.
#pragma once

#include <string_view>

namespace kivo::platform {

/// Writes `line` and a line feed to standard output without buffering. Thread-safe: lines of
/// several callers do not mix. Ignores a closed or full output.
void printLine(std::string_view line);

}  // namespace kivo::platform
