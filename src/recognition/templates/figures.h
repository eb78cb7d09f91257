// Replaces the parts of a message that differ from one message to the next (dates, times, balances,
// accounts, references) by {any}. Does not know which number is the amount.
#pragma once

#include <string>
#include <string_view>

namespace kivo::recognition {

/// Whether a placeholder touches a part of a message at its start or at its end.
struct Neighbours {
  bool behindPlaceholder = false;
  bool beforePlaceholder = false;
};

/// Returns `part` of a message (in template form) as pattern text: each word that holds a digit
/// becomes {any}, and so does a month, a weekday or AM/PM next to such a word. Punctuation at the
/// ends of a word stays, as does its text up to a ":", "=", "#" or bracket. A word that touches a
/// placeholder keeps the characters between the placeholder and its digits. Consecutive words
/// become one {any}, except next to a placeholder.
std::string withoutFigures(std::string_view part, Neighbours neighbours);

}  // namespace kivo::recognition
