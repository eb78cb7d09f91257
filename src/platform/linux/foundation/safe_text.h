// Makes untrusted text safe to print on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// Returns `text` with each character that is not shown as itself written as an escape such as \n,
/// \x1b or \u202e, so that the text can neither move the cursor, nor fake another line, nor reorder
/// an amount. Escapes control and format characters, line and paragraph separators, and
/// default-ignorable, private-use and unassigned characters. Keeps a joiner or variation selector
/// (U+200C, U+200D, U+FE0E, U+FE0F) after a character that it shapes. Bytes that are not UTF-8
/// become U+FFFD.
std::string escapedControls(std::string_view text);

/// As `escapedControls`, but drops the direction marks U+200E, U+200F and U+061C. For sentences
/// with an amount: the formatter puts these marks around amounts in right-to-left locales.
std::string escapedSentence(std::string_view text);

/// As `escapedControls`, for JSON without line breaks: uses JSON's own escapes, so that the meaning
/// stays the same.
std::string escapedJSON(std::string_view text);

/// As `escapedControls` when standard output is a terminal, otherwise `text` unchanged.
std::string forStandardOutput(std::string_view text);

/// As `escapedSentence` when standard output is a terminal, otherwise `text` unchanged.
std::string sentenceForStandardOutput(std::string_view text);

/// As `escapedJSON` when standard output is a terminal, otherwise `text` unchanged.
std::string jsonForStandardOutput(std::string_view text);

}  // namespace kivo::linux_platform
