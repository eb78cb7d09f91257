// Makes any bytes valid UTF-8. Detects no other encoding.
#pragma once

#include <string>
#include <string_view>

namespace kivo::platform {

/// `bytes` as valid UTF-8: each maximal ill-formed subpart becomes one U+FFFD, everything else
/// stays, NUL included.
std::string repairedUtf8(std::string_view bytes);

}  // namespace kivo::platform
