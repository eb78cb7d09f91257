// Normalises a message for templates, and finds the numbers in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::recognition {

/// Returns `text` (UTF-8) in template form: the readable form (spelling.h), with each run of white
/// space replaced by one blank, and trimmed.
std::string templateForm(std::string_view text);

/// A number of a message.
struct MessageNumber {
  /// Its bytes are [`begin`, `end`).
  std::size_t begin = 0;
  std::size_t end = 0;
  /// Its digits and separators, without the blanks between groups.
  std::string digits;
};

/// Returns the numbers that begin at position `at` of `text` (in template form): empty inside a
/// number; two where a blank may group digits, as in "1 234,50".
std::vector<MessageNumber> numbersAt(std::string_view text, std::size_t at);

}  // namespace kivo::recognition
