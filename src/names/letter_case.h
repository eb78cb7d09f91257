// Tells capitals from small letters in any script.
#pragma once

#include <string_view>

namespace kivo::names {

/// `none` for a script without capitals, and for what is no letter.
enum class LetterCase { none, small, capital };

/// The case of the character at the front of `utf8`. Thread-safe.
LetterCase caseOfFirst(std::string_view utf8);

}  // namespace kivo::names
