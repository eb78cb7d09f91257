// Cuts a folded name into its words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kivo::names {

/// The words of `foldedName(utf8)`, in order: longest runs of characters that are no blank, no
/// punctuation, no symbol and no control. "H&M Café" has the words "h", "m" and "cafe". Empty for a
/// name without letters and digits. Throws as `foldedName` does. Thread-safe.
std::vector<std::string> foldedWords(std::string_view utf8);

}  // namespace kivo::names
