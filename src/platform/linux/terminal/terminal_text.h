// Makes texts from elsewhere safe to show on a terminal. Colours nothing.
#pragma once

#include <string>
#include <string_view>

namespace kivo::linux_platform {

/// `text` with each character that is not seen as itself written as an escape such as \n, \x1b or
/// \u202e, so that a text from elsewhere can neither move the cursor, nor fake another line, nor
/// show an amount in another order: control and format characters, line and paragraph separators,
/// default-ignorable, private and unassigned characters. A joiner or a selector of emoji stays
/// behind the character that it shapes (U+200C, U+200D, U+FE0E, U+FE0F). Bytes that are not UTF-8
/// become U+FFFD.
std::string escapedControls(std::string_view text);

/// As `escapedControls`, but without the direction marks U+200E, U+200F and U+061C. For sentences
/// that hold an amount: the formatter puts them around amounts of right-to-left locales.
std::string escapedSentence(std::string_view text);

/// As `escapedControls`, for JSON without line breaks: its escapes are JSON's, so that it keeps its
/// meaning.
std::string escapedJSON(std::string_view text);

/// As `escapedControls` when standard output is a terminal, else `text` as it is.
std::string forStandardOutput(std::string_view text);

/// As `escapedSentence` when standard output is a terminal, else `text` as it is.
std::string sentenceForStandardOutput(std::string_view text);

/// As `escapedJSON` when standard output is a terminal, else `text` as it is.
std::string jsonForStandardOutput(std::string_view text);

}  // namespace kivo::linux_platform
