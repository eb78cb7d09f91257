// Tells the user about a failure.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Prints `what` as one line on standard error, after the name of `program`.
void complain(const std::string& program, const std::string& what);

}  // namespace kivo::linux_platform
