// Matches senders against the patterns in the user's settings.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo::SenderPattern {

/// Whether `pattern` matches the whole of `sender`, ignoring letter case and surrounding blanks;
/// each * matches any characters, or none. In phone numbers (digits, +, * and separators) the
/// separators (blanks, hyphens, dots, parentheses) are ignored, and a leading 00 equals +. A number
/// with its country code does not match the same number without it.
bool means(std::string_view pattern, std::string_view sender);

/// Returns why `pattern` is invalid, as a phrase to follow "a sender"; nullopt when it is valid. A
/// pattern must not be blank or consist only of *.
std::optional<std::string> objectionTo(std::string_view pattern);

}  // namespace kivo::SenderPattern
