// Folds names for comparing: one form for every way to write the same name.
#pragma once

#include <string>
#include <string_view>

namespace kivo::names {

/// The form of `utf8` for comparing, as UTF-8. Two names have the same form when they differ only
/// in letter case, accents, width, presentation forms or invisible characters, in the forms of the
/// Arabic alef, ya and kaf, in ta marbuta for ha, in tatweel or harakat, or in how many blanks
/// stand between words or around the name. Vowel signs of scripts such as Devanagari or Thai count.
/// The form of a form is itself. Invalid UTF-8 counts as U+FFFD. Throws std::runtime_error when
/// ICU's data cannot be read. Thread-safe.
std::string foldedName(std::string_view utf8);

}  // namespace kivo::names
