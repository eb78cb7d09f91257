// Matches senders against the patterns in the user's settings.
#pragma once

#include <string_view>

namespace kivo::SenderPattern {

/// Whether `pattern` matches the whole of `sender`, in the same letter case; each * matches any
/// characters, or none, and surrounding blanks are ignored. In phone numbers (digits, +, * and
/// separators) the separators (blanks, hyphens, dots, parentheses) are ignored, and a leading 00
/// equals +. A number with its country code does not match the same number without it.
bool means(std::string_view pattern, std::string_view sender);

/// Throws Failure for an invalid pattern: one that is blank or consists only of *.
void check(std::string_view pattern);

}  // namespace kivo::SenderPattern
