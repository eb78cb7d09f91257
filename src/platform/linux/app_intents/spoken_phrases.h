// Matches a sentence to the intent whose phrase it is.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Normalizes `sentence` (UTF-8) for comparison: ASCII letters in lower case, single blanks between
/// words, no punctuation at the end. Other characters stay.
std::string plainWords(std::string_view sentence);

/// Returns a new intent whose shortcut has the phrase `sentence` (UTF-8), compared by `plainWords`;
/// nullptr without such a shortcut.
std::unique_ptr<platform::AppIntent> intentSpokenOf(const platform::AppIntentsExtension& extension,
                                                    std::string_view sentence);

/// Returns all phrases with the application's name, in the order of the shortcuts.
std::vector<std::string> spokenPhrases(const platform::AppIntentsExtension& extension);

}  // namespace kivo::linux_platform
