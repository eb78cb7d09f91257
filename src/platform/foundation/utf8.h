// Repairs text that is not valid UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kivo::platform {

/// Returns `bytes` with each maximal ill-formed subpart replaced by one U+FFFD. Everything else
/// stays, NUL included.
std::string repairedUtf8(std::string_view bytes);

}  // namespace kivo::platform
