// Makes text safe to show on a terminal. Colours nothing.
#pragma once

#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// `text` (UTF-8) with each control character, line breaks included, written as an escape such as
/// \n or \x1b, so that a text from elsewhere can neither move the cursor nor fake another line.
std::string escapedControls(std::string_view text);

/// As `escapedControls` when standard output is a terminal, else `text` as it is.
std::string forStandardOutput(std::string_view text);

}  // namespace kivo::linux_platform
