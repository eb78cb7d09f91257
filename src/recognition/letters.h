// Tells letters from marks, and folds the case and accents of a word's letters.
#pragma once

#include <string>
#include <string_view>

namespace kivo::recognition {

/// Whether `character`, one character of UTF-8, is a letter or belongs to one.
bool isLetter(std::string_view character);

/// `word`, letters of UTF-8, as `foldedName` (names/name_fold.h) writes it; throws what that
/// throws.
std::string folded(std::string_view word);

}  // namespace kivo::recognition
