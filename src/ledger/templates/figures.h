// Removes the figures of a message from its wording: dates, times, balances, accounts, references.
#pragma once

#include <string>
#include <string_view>

namespace kivo::ledger {

/// What is beside a part of a message.
struct Neighbours {
  bool behindPlaceholder = false;
  bool beforePlaceholder = false;
};

/// `part` of a message (in template form) as literal text of a pattern, with {any} for each word
/// that holds a digit, and for each month, day of the week and half of the day beside one. The
/// marks at the ends of a word and the text in front of a ":", "=", "#" or bracket stay. A word
/// that touches a placeholder keeps what is between it and the digits. Words in a row have one
/// {any}, but beside a placeholder one each.
std::string withoutFigures(std::string_view part, Neighbours neighbours);

}  // namespace kivo::ledger
