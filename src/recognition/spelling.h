// Unifies the spelling of digits, blanks and separators, which banks write in many ways.
#pragma once

#include <string>
#include <string_view>

namespace kivo::recognition {

/// `text` (UTF-8) with Western digits and separators for those of other scripts, plain blanks for
/// wide ones, and without marks of writing direction and stretched Arabic letters.
std::string readableForm(std::string_view text);

/// The length in bytes of the UTF-8 character at the front of `text`, at least 1 and at most the
/// text's own length; 0 for an empty text.
std::size_t characterLength(std::string_view text);

/// The length of the longest front of `text` of whole characters and `limit` bytes at most.
std::size_t wholeCharacters(std::string_view text, std::size_t limit);

}  // namespace kivo::recognition
