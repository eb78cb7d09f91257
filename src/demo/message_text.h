// A bank message in the forms in which it is read by rule. Gives its words no meaning.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

/// One text twice, byte for byte at the same places.
struct MessageText {
  /// `message` (UTF-8) with Western digits and separators for Arabic and Persian ones, plain blanks
  /// for wide and narrow ones, and without marks of writing direction.
  explicit MessageText(std::string_view message);

  /// For showing pieces of it.
  std::string readable;
  /// For comparing: ASCII letters in lower case, Arabic letters without the variants of spelling.
  std::string folded;
};

/// The length of the longest front of `text` (UTF-8) of whole characters and `limit` bytes at most.
std::size_t wholeCharacters(std::string_view text, std::size_t limit);

/// The sentences of `text`, which joined are `text` again: each ends with a line break, or with a
/// mark before a blank.
std::vector<std::string_view> sentences(std::string_view text);

/// Where `word` stands in folded text at or after `from`, or npos. It does not begin within a Latin
/// word, nor end within one unless it is written with a trailing '~'.
std::size_t findWord(std::string_view folded, std::string_view word, std::size_t from = 0);

/// Whether one of `words` stands in folded text, as `findWord`.
bool holdsAny(std::string_view folded, std::span<const std::string_view> words);

}  // namespace kivo
