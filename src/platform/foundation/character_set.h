// Which characters count as blanks. Knows nothing of line breaks, which do not.
#pragma once

#include <string_view>

namespace kivo::platform {

/// `text` (UTF-8) without leading and trailing horizontal blanks: the tab and the characters of
/// Unicode's category Zs. The result is a part of `text` and lives as long as it.
std::string_view trimmingWhitespaces(std::string_view text);

}  // namespace kivo::platform
