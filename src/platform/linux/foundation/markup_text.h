// Makes text safe inside markup. Knows no markup of its own.
#pragma once

#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// `text` with &, < and > written as entities, so that markup around it reads it as it is.
std::string escapedMarkup(std::string_view text);

}  // namespace kivo::linux_platform
