// Ends the process on a programming or configuration error. Not for bad input.
#pragma once

#include <string_view>

namespace kivo::platform {

/// Prints `reason` as one line on standard error and aborts the process. `reason` never contains
/// message text, an amount, a merchant or a user identifier.
[[noreturn]] void fatalStop(std::string_view reason);

}  // namespace kivo::platform
