// Trims blanks. Line breaks do not count as blanks.
#pragma once

#include <string_view>

namespace kivo::platform {

/// Returns `text` (UTF-8) without leading and trailing tabs and characters of Unicode category Zs.
/// The result points into `text`.
std::string_view trimmingWhitespaces(std::string_view text);

}  // namespace kivo::platform
