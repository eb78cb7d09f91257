// How much room a text takes on a terminal. Escapes nothing: that is terminal_text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// The columns that `text` (UTF-8) takes: two for wide characters, none for accents, joiners and
/// the marks of writing direction.
std::size_t columnsOf(std::string_view text);

/// `text` followed by as many blanks as fill `columns`; a longer text stays as it is.
std::string paddedTo(std::size_t columns, std::string_view text);

/// `text` when it fits in `columns`, else its beginning and an ellipsis that do.
std::string cutTo(std::size_t columns, std::string_view text);

}  // namespace kivo::linux_platform
