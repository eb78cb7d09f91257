// Finds the shortcuts that match the words typed into a search.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Returns the type names of the intents that have a phrase in which each word of `terms` is the
/// beginning of a word, in any order. Only intents that search may offer, in the order of their
/// shortcuts. Ignores letter case and punctuation at the end of a term. Empty when `terms` contains
/// no word.
std::vector<std::string> intentsFound(const platform::AppIntentsExtension& extension,
                                      const std::vector<std::string>& terms);

/// A search result.
struct ShownShortcut {
  std::string title;
  /// One of its phrases.
  std::string description;
  /// Icon names, of which the first one that exists is used.
  std::vector<std::string> icons;
};

/// Returns the search result for the intent `typeName`; nullopt when search may not offer it.
std::optional<ShownShortcut> shownShortcut(const platform::AppIntentsExtension& extension,
                                           std::string_view typeName);

}  // namespace kivo::linux_platform
