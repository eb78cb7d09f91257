// How the process ends on a programming or configuration error. Is no way to report bad input.
#pragma once

#include <string_view>

namespace kivo::platform {

/// Writes `reason` as one line on standard error and aborts the process. `reason` never holds a
/// message text, an amount, a merchant or a user identifier.
[[noreturn]] void fatalStop(std::string_view reason);

}  // namespace kivo::platform
