// Escapes text for use in markup.
#pragma once

#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// Returns `text` with &, < and > as entities.
std::string escapedMarkup(std::string_view text);

}  // namespace kivo::linux_platform
