// The text of a message as templates see it: one spelling, and the numbers in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::ledger {

/// `text` (UTF-8) in the recogniser's readable form, with one blank for each run of white space and
/// none at its ends.
std::string templateForm(std::string_view text);

/// A number of a message.
struct MessageNumber {
  /// The place behind it.
  std::size_t end = 0;
  /// Its digits and separators, without blanks between its groups.
  std::string digits;
};

/// The numbers that begin at `at` of `text` (in template form): none within a number; two where
/// blanks may group its digits, as in "1 234,50".
std::vector<MessageNumber> numbersAt(std::string_view text, std::size_t at);

}  // namespace kivo::ledger
