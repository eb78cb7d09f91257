// Makes any bytes a text that the bus carries. Sends none.
#pragma once

#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// `text` as the bus can carry it: what is no UTF-8, NUL and noncharacters become U+FFFD.
std::string busText(std::string_view text);

}  // namespace kivo::linux_platform
