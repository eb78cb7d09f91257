// Writing lines to standard output. Formats nothing.
#pragma once

#include <string_view>

namespace kivo::platform {

/// Writes `line` and a line feed to standard output at once, whole and in order with other callers.
/// An output that is closed or full is no failure of the caller and is not reported.
void printLine(std::string_view line);

}  // namespace kivo::platform
