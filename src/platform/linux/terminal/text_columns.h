// Measures, pads and cuts text by terminal columns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// Returns the columns that `text` (UTF-8) takes: two for a wide character, zero for combining
/// marks, joiners and direction marks.
std::size_t columnsOf(std::string_view text);

/// Returns `text` padded with blanks to `columns`; a wider text unchanged.
std::string paddedTo(std::size_t columns, std::string_view text);

/// Returns `text` when it fits in `columns`, otherwise its beginning and an ellipsis that fit.
std::string cutTo(std::size_t columns, std::string_view text);

/// Returns the words of `text` in lines of `columns` at most, each after `indent` and with a line
/// break at its end. A word that is wider than a line continues on the next.
std::string wrappedTo(std::size_t columns, std::string_view text, std::string_view indent = "");

}  // namespace kivo::linux_platform
