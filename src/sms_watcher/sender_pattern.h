// Which senders a name in the person's settings means. Reads no settings.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo::SenderPattern {

/// Whether `pattern` means `sender`. It must be the whole sender, letter for letter, upper and
/// lower case apart; each * in it stands for any characters, or none. Blanks around either do not
/// count. In what is all digits, +, * and the marks that part them (blanks, hyphens, dots,
/// brackets), those marks do not count, and a leading 00 is a +. A number with its country's code
/// and the same number without are two senders.
bool means(std::string_view pattern, std::string_view sender);

/// Why `pattern` can name no sender, as words after "a sender"; none when it can. It must not be
/// blank, and must say more than *.
std::optional<std::string> objectionTo(std::string_view pattern);

}  // namespace kivo::SenderPattern
